#pragma once

#include "host/cli/dial_options.h"
#include "host/cli/session.h"

namespace dial {

// What `voxtrel dial` can do. What fails is reported to the session.

/// Hears a name, asks, and calls.
void HearAndCall(cli::Session& session, const cli::DialOptions& options);
/// --to
void CallContact(cli::Session& session, const cli::DialOptions& options);

/// --recognize
void RecognizeFiles(cli::Session& session, const cli::DialOptions& options);
/// --evaluate
void Evaluate(cli::Session& session, const cli::DialOptions& options);

/// way list. With --json: {"ways":[{"name","used"},...],"chosen"}. "chosen" is "" if none was
/// chosen.
void ListWays(cli::Session& session, const cli::DialOptions& options);
/// way use. With --json: {"chosen"}.
void UseWay(cli::Session& session, const cli::DialOptions& options);

}  // namespace dial
