#pragma once

#include <CLI/App.hpp>

#include "host/cli/session.h"

namespace cli {

/// voxtrel reinit|check
void AddMaintenanceCommands(CLI::App& app, Session& session);

}  // namespace cli
