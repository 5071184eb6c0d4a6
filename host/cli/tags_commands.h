#pragma once

#include <CLI/App.hpp>

#include "host/cli/session.h"

namespace cli {

/// voxtrel tags learn|list|test|play|delete|delete-all
void AddTagsCommands(CLI::App& app, Session& session);

}  // namespace cli
