#pragma once

#include <string>
#include <vector>

#include "host/cli/session.h"

namespace cli {

/// What the latest log-on to the contacts passed over, each as "FILE:LINE: sentence".
[[nodiscard]] std::vector<std::string> DescribeContactRemarks(Session& session);

/// What a user can do about a log-on to the contacts that failed.
[[nodiscard]] std::string ExplainContactsProblem(Session& session);

}  // namespace cli
