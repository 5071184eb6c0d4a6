#pragma once

#include <string>

#include "host/cli/session.h"

namespace cli {

/// Why nothing was played, in words that tell the user where to look, and with `code`, an
/// audio::PlayCode other than kPlayed.
[[nodiscard]] std::string ExplainPlayCode(const Session& session, int code);

}  // namespace cli
