#include <optional>

#include "host/dial/commands.h"
#include "host/dial/talk.h"
#include "host/dial/taught.h"

namespace dial {

void HearAndCall(cli::Session& session, const cli::DialOptions& options) {
  if (!session.OpenForReading()) {
    return;
  }
  // A store without tags needs no address book, which may take seconds.
  const std::optional<dialer::TaughtTags> taught = ReadTaught(session);
  if (taught) {
    Talk(session, options, *taught, [](dialer::Conversation& conversation) {
      // What goes wrong was reported to the session.
      static_cast<void>(conversation.HearAndCall());
    });
  }
}

}  // namespace dial
