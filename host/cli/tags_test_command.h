#pragma once

#include <CLI/App.hpp>

#include "host/cli/session.h"

namespace cli {

/// voxtrel tags test
void AddTagsTestCommand(CLI::App& group, Session& session);

}  // namespace cli
