#pragma once

#include <functional>

#include "dialer/conversation.h"
#include "host/cli/dial_options.h"
#include "host/cli/session.h"

namespace dial {

/// Makes a conversation on the terminal and lets `run` begin it. `taught` is what can be meant by a
/// name; empty if nobody listens. The session is open for reading. What goes wrong is reported to
/// it.
void Talk(cli::Session& session, const cli::DialOptions& options, const dialer::TaughtTags& taught,
          const std::function<void(dialer::Conversation& conversation)>& run);

}  // namespace dial
