#pragma once

#include <CLI/App.hpp>

#include "host/cli/session.h"

namespace cli {

/// Adds `trash` and `restore` to the group of commands on tags.
void AddTrashCommands(CLI::App& tags, Session& session);

}  // namespace cli
