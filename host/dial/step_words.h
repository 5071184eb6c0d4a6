#pragma once

#include <string>

#include "dialer/conversation.h"
#include "host/cli/output.h"
#include "host/session/session.h"

namespace dial {

/// Returns somebody in the form that all commands of the dialer print: {"contact","number","kind",
/// "tag","distance","score"}. "contact" is the name in `contacts list`.
[[nodiscard]] cli::Json ToJson(const dialer::Callee& callee);

/// Returns a step as {"step"}. If somebody may be called, there is "candidates", an array. A call
/// that was tried has "result", and what was not done for a reason of its own has "reason".
[[nodiscard]] cli::Json ToJson(const dialer::StepShown& shown);

/// Returns somebody for a line: "Anna Berg, Mobile +1 202 555 0101".
[[nodiscard]] std::string Describe(const dialer::Callee& callee);

/// Returns the microphone as its user knows it.
[[nodiscard]] std::string NameMicrophone(session::Session& session);

/// Returns why nothing was heard, a part of a sentence.
[[nodiscard]] std::string ExplainNotHeard(session::Session& session, dialer::NotHeard reason);

}  // namespace dial
