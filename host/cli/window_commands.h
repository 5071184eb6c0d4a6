#pragma once

#include <CLI/App.hpp>

#include "host/cli/session.h"

namespace cli {

/// voxtrel open|panel
void AddWindowCommands(CLI::App& app, Session& session);

}  // namespace cli
