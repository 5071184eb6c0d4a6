#pragma once

#include <CLI/App.hpp>

#include "host/cli/session.h"

namespace cli {

/// voxtrel tags test. With --json: {"lines":[TEXT,...],"pairs":[{"tag","neighbour","score",
/// "distance","confusions"},...]}, and "beyond", how many tags are left out since a test takes 100,
/// only where any is.
void AddTagsTestCommand(CLI::App& group, Session& session);

}  // namespace cli
