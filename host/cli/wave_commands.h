#pragma once

#include <CLI/App.hpp>

#include "host/cli/session.h"

namespace cli {

/// voxtrel wave record|play|check
void AddWaveCommands(CLI::App& app, Session& session);

}  // namespace cli
