#pragma once

#include <string>

#include "host/cli/page_run.h"
#include "host/cli/session.h"

namespace cli {

/// Chooses the one contact that `wanted` means: the one with that identifier, else the one of that
/// name, else the one with that number in `contacts list`, else the one of those words in another
/// order, else the one whose name holds each of those words. Returns false if that is none or
/// several, after it has reported it with the candidates.
[[nodiscard]] bool ChooseContact(Session& session, PageRun& run, const std::string& wanted);

/// Chooses the number of the kind with that word, as "Mobile", whatever its letter case. Returns
/// false if the contact has none, after it has reported the kinds that it has.
[[nodiscard]] bool ChooseNumber(Session& session, PageRun& run, const std::string& kind);

}  // namespace cli
