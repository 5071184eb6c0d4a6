#pragma once

#include <CLI/App.hpp>

#include "host/cli/session.h"

namespace cli {

/// voxtrel language check|show|template
void AddLanguageCommands(CLI::App& app, Session& session);

}  // namespace cli
