#pragma once

#include <string>

#include "dialer/conversation.h"
#include "host/session/session.h"

namespace dial {

/// Keeps a take as one more voice tag of somebody's number. The dialer writes nothing to the store
/// of the applet: it runs `voxtrel tags learn`, with the take in the place of the microphone. Fails
/// with the reason, a part of a sentence.
[[nodiscard]] platform::Result<void, std::string> KeepTake(session::Session& session,
                                                           const dialer::Callee& callee,
                                                           dialer::Take take);

}  // namespace dial
