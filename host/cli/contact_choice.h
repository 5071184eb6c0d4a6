#pragma once

#include <string>

#include "host/cli/page_run.h"
#include "host/cli/session.h"

namespace cli {

/// Chooses the one contact that `wanted` means: the one with that identifier, else the one of that
/// name, else the one of those words in another order, else the one whose name holds each of those
/// words. If that is none or several, reports this with the candidates and returns false.
[[nodiscard]] bool ChooseContact(Session& session, PageRun& run, const std::string& wanted);

/// Chooses the number of the kind with that word, as "Mobile", whatever its letter case. If the
/// contact has none, reports the kinds that it has and returns false.
[[nodiscard]] bool ChooseNumber(Session& session, PageRun& run, const std::string& kind);

}  // namespace cli
