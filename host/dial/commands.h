#pragma once

#include "dialer/conversation.h"
#include "host/cli/dial_options.h"
#include "host/cli/session.h"

namespace dial {

// What `voxtrel dial` can do. What fails is reported to the session.

/// Hears a name, asks, and calls.
void HearAndCall(cli::Session& session, const cli::DialOptions& options);
/// Calls somebody who has no fault by the way that the options or the settings name, else by the
/// first that works. With --json prints {"step":"way","way","dialled"}, with "passedOver":
/// [{"way","result","reason"},...] if other ways could not be taken before.
[[nodiscard]] dialer::CallResult PlaceCall(cli::Session& session, const cli::DialOptions& options,
                                           const dialer::Callee& callee, dialer::Waiter& waiter);
/// --to
void CallContact(cli::Session& session, const cli::DialOptions& options);
/// --hang-up. With --json: {"step":"hung-up"}.
void HangUp(cli::Session& session, const cli::DialOptions& options);

/// --recognize
void RecognizeFiles(cli::Session& session, const cli::DialOptions& options);
/// --evaluate
void Evaluate(cli::Session& session, const cli::DialOptions& options);

/// way list. With --json: {"ways":[{"name","used","works"},...],"chosen"}. A way that does not work
/// has a "reason". "chosen" is "" if none was chosen.
void ListWays(cli::Session& session, const cli::DialOptions& options);
/// way use. With --json: {"chosen"}.
void UseWay(cli::Session& session, const cli::DialOptions& options);

}  // namespace dial
