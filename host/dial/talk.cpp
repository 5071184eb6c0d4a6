#include <memory>
#include <optional>
#include <span>

#include "dialer/recognizer.h"
#include "host/dial/commands.h"
#include "host/dial/terminal.h"
#include "host/dial/terminal_face.h"

namespace dial {

void Talk(cli::Session& session, const cli::DialOptions& options, const dialer::TaughtTags& taught,
          const std::function<void(dialer::Conversation& conversation)>& run) {
  const platform::Platform platform = session.GetPlatform();
  const dialer::Recognizer recognizer(
      taught.tags, options.quick ? dialer::Steps::kTemplatesOnly : dialer::Steps::kBoth);
  // Without tags nobody is looked up, and to read an address book may take seconds.
  platform::ContactsStore* const contacts = taught.tags.empty() ? nullptr : OpenContacts(session);
  const dialer::Parts parts{
      .tags = taught.tags,
      .sound = {.waveIn = platform.waveIn,
                .waveOut = platform.waveOut,
                .clock = platform.clock,
                .hearsFile = session.HearsFile()},
      .recognize = [&](std::span<const dialer::Take> takes) { return recognizer.Recognize(takes); },
      .lookUp =
          [contacts](const dialer::Candidate& candidate) {
            return dialer::FindCallee(contacts, candidate);
          },
      .call = [&](const dialer::Callee& callee,
                  dialer::Waiter& waiter) { return PlaceCall(session, options, callee, waiter); },
      .keep = [&session](const dialer::Callee& callee,
                         dialer::Take take) { return KeepTake(session, callee, take); }};
  const std::unique_ptr<Terminal> terminal = Terminal::Open(session.GetClock());
  // If the command names the person and there is no terminal, nobody could stop the call, so the
  // call waits for nobody.
  const bool isDecided = !options.to.empty() && terminal == nullptr;
  const dialer::Manner manner{.waits = !session.GetOptions().yes && !isDecided,
                              .asks = terminal != nullptr};
  TerminalFace face(session, terminal.get(), manner);
  dialer::Conversation conversation(parts, face, manner);
  run(conversation);
}

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
