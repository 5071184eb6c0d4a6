#pragma once

#include <CLI/App.hpp>

#include "host/cli/session.h"

namespace cli {

/// voxtrel status
void AddStatusCommands(CLI::App& app, Session& session);

}  // namespace cli
