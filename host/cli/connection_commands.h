#pragma once

#include <CLI/App.hpp>

#include "host/cli/session.h"

namespace cli {

/// voxtrel connection [show|set]
void AddConnectionCommands(CLI::App& app, Session& session);

}  // namespace cli
