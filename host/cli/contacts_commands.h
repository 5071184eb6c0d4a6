#pragma once

#include <CLI/App.hpp>

#include "host/cli/session.h"

namespace cli {

/// voxtrel contacts list
void AddContactsCommands(CLI::App& app, Session& session);

}  // namespace cli
