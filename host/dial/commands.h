#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "dialer/conversation.h"
#include "dialer/taught_tags.h"
#include "host/cli/dial_options.h"
#include "host/cli/session.h"
#include "platform/file_system.h"
#include "platform/result.h"

namespace dial {

/// Runs one command line of `voxtrel-dial`. Returns the exit code of the program.
[[nodiscard]] int RunDialLine(int argc, const char* const* argv);

// What `voxtrel dial` can do. What fails is reported to the session.

/// Hears a name, asks, and calls.
void HearAndCall(cli::Session& session, const cli::DialOptions& options);
/// Calls somebody who has no fault by the way that the options or the settings name, else by the
/// first that works. With --json prints {"step":"way","way","dialled"}, with "passedOver":
/// [{"way","result","reason"},...] if other ways could not be taken before.
[[nodiscard]] dialer::CallResult PlaceCall(cli::Session& session, const cli::DialOptions& options,
                                           const dialer::Callee& callee, dialer::Waiter& waiter);
/// --to: calls this contact and hears no name.
void CallContact(cli::Session& session, const cli::DialOptions& options);
/// --hang-up: ends the call of the modem. With --json: {"step":"hung-up"}.
void HangUp(cli::Session& session, const cli::DialOptions& options);

/// --recognize: says who is meant in each file.
void RecognizeFiles(cli::Session& session, const cli::DialOptions& options);
/// --evaluate: measures how often the recognizer is right with the recordings of a folder.
void Evaluate(cli::Session& session, const cli::DialOptions& options);

/// way list: lists the ways to call. With --json: {"ways":[{"name","used","works"},...],"chosen"}.
/// A way that does not work has a "reason". "chosen" is "" if none was chosen.
void ListWays(cli::Session& session, const cli::DialOptions& options);
/// way use: remembers how to call. With --json: {"chosen"}.
void UseWay(cli::Session& session, const cli::DialOptions& options);

// What the commands share.

/// Makes a conversation on the terminal and lets `run` begin it. `taught` is what can be meant by a
/// name; empty if nobody listens. The session is open for reading. What goes wrong is reported to
/// it.
void Talk(cli::Session& session, const cli::DialOptions& options, const dialer::TaughtTags& taught,
          const std::function<void(dialer::Conversation& conversation)>& run);

/// Keeps a take as one more voice tag of somebody's number. The dialer writes nothing to the store
/// of the applet: it runs `voxtrel tags learn`, with the take in the place of the microphone. Fails
/// with the reason, a part of a sentence.
[[nodiscard]] platform::Result<void, std::string> KeepTake(session::Session& session,
                                                           const dialer::Callee& callee,
                                                           dialer::Take take);

/// Returns what is taught, for a session that is open for reading. Warns of each tag that is passed
/// over, and says what the user can do. Returns nothing, and reports it, if the store cannot be
/// read, or if there are tags and none can be used.
[[nodiscard]] std::optional<dialer::TaughtTags> ReadTaught(session::Session& session);

/// Returns the contacts. Returns null, and warns, if they cannot be read: names are known then by
/// the numbers of their contacts only.
[[nodiscard]] platform::ContactsStore* OpenContacts(session::Session& session);

/// Returns the sound of a wave file of any usual format as the recorder would have it. The error is
/// a part of a sentence, without the file's name.
[[nodiscard]] platform::Result<std::vector<std::int16_t>, std::string> ReadTake(
    platform::FileSystem& files, std::u16string_view path);

}  // namespace dial
