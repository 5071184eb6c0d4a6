#pragma once

#include <string>

#include "host/cli/session.h"
#include "host/session/page_run.h"

namespace cli {

/// Chooses the one contact that `wanted` means: the one with that identifier, else the one of that
/// name, else the one with that number in `contacts list`, else the one of those words in another
/// order, else the one with each of those words in its name. If that is none, or if there are
/// several, reports the candidates and returns false.
[[nodiscard]] bool ChooseContact(Session& session, session::PageRun& run,
                                 const std::string& wanted);

/// Chooses the number of the kind with that word, such as "Mobile", in any letter case. If the
/// contact has no such number, reports the kinds that it has and returns false.
[[nodiscard]] bool ChooseNumber(Session& session, session::PageRun& run, const std::string& kind);

}  // namespace cli
