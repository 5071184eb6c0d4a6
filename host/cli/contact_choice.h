#pragma once

#include <string>

#include "host/cli/page_run.h"
#include "host/cli/session.h"

namespace cli {

/// Chooses the one contact that `wanted` means: the one with that identifier, else the one of that
/// name, else the one of those words in another order, else the one whose name holds each of those
/// words. Where that is none or several, this is told with the candidates; false then.
[[nodiscard]] bool ChooseContact(Session& session, PageRun& run, const std::string& wanted);

/// Chooses the number of the kind with that word, as "Mobile", whatever its letter case. Where the
/// contact has none, the kinds it has are told; false then.
[[nodiscard]] bool ChooseNumber(Session& session, PageRun& run, const std::string& kind);

}  // namespace cli
