#pragma once

#include <CLI/App.hpp>

#include "host/cli/session.h"

namespace cli {

/// voxtrel registry export|import
void AddRegistryCommands(CLI::App& app, Session& session);

}  // namespace cli
