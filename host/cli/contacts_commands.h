#pragma once

#include <CLI/App.hpp>
#include <string>

#include "host/cli/session.h"

namespace cli {

/// voxtrel contacts list
void AddContactsCommands(CLI::App& app, Session& session);

/// What a user can do about a log-on to the contacts that failed.
[[nodiscard]] std::string ExplainContactsProblem(Session& session);

}  // namespace cli
