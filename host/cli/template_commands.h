#pragma once

#include <CLI/App.hpp>

#include "host/cli/session.h"

namespace cli {

/// voxtrel template learn|process|show|compare
void AddTemplateCommands(CLI::App& app, Session& session);

}  // namespace cli
