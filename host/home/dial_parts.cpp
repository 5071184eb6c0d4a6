#include "host/home/dial_parts.h"

#include <span>

#include "dialer/number.h"
#include "dialer/recognizer.h"
#include "dialer/taught_tags.h"
#include "host/calling/local_caller.h"
#include "host/home/gathering.h"
#include "host/session/session.h"
#include "resources/dial_window_strings.h"
#include "resources/translations.h"
#include "tags/contact_reading.h"

namespace home {
namespace {

dialer::CallResult CallNumber(dialer::Caller& caller, const dialer::Callee& callee,
                              dialer::Waiter& waiter) {
  const auto number = dialer::MakeNumber(callee.number);
  if (!number) {  // Only a callee without a fault is called.
    return platform::Failure(dialer::CallFault{dialer::CallProblem::kModemRefused, {}});
  }
  return caller.Call(*number, waiter);
}

/// The list of calls is a convenience: a call is a call even if it cannot be noted.
void Note(const machine::Options& options, platform::Clock& clock, const dialer::Callee& callee) {
  machine::Backends backends(options);
  if (callee.candidate.oid && backends.HasRoot()) {
    backends.MakeRoot();
    static_cast<void>(
        dialer::NoteCall(backends.GetRegistry(),
                         {clock.GetUnixTime(), *callee.candidate.oid, callee.candidate.phoneKind}));
  }
}

}  // namespace

std::u16string PrepareTalk(const machine::Options& options, const Sound& sound,
                           const std::function<void(const dialer::Parts& parts)>& use) {
  Gathering gathering;
  session::Session session(options, gathering);
  if (!session.OpenForReading()) {
    return gathering.GetText();
  }
  const auto taught = dialer::ReadTaughtTags(session.GetFiles(), session.GetRegistry());
  if (!taught) {
    return ToSentence(session.ExplainStore(taught.error()));
  }
  if (taught->tags.empty() && !taught->passedOver.empty()) {
    return std::u16string(resources::Say(resources::kNoTagIsUsable));
  }
  vcard::AddressBooks& contacts = session.GetContacts();
  const bool areOpen = tags::OpenContacts(contacts, session.GetClock()).has_value();
  // Made before anybody speaks: it would keep the user waiting for the answer.
  const dialer::Recognizer recognizer(taught->tags);
  calling::LocalCaller caller(session.GetRegistry(), sound.clock, {});
  std::function<platform::Result<void, dialer::CallFault>()> hangUp;
  if (caller.Get().MayHangUp()) {
    hangUp = [&caller] { return caller.Get().HangUp(); };
  }
  use({.tags = taught->tags,
       .sound = {sound.waveIn, sound.waveOut, sound.clock, session.HearsFile()},
       .recognize =
           [&recognizer](std::span<const dialer::Take> takes) {
             return recognizer.Recognize(takes);
           },
       .lookUp =
           [&contacts, areOpen](const dialer::Candidate& candidate) {
             return dialer::FindCallee(areOpen ? &contacts : nullptr, candidate);
           },
       .call =
           [&](const dialer::Callee& callee, dialer::Waiter& waiter) {
             dialer::CallResult call = CallNumber(caller.Get(), callee, waiter);
             if (call) {
               Note(options, sound.clock, callee);
             }
             return call;
           },
       .keep = {},  // The window does this itself, with its own thread for the store.
       .hangUp = hangUp});
  contacts.Logoff();
  return {};
}

std::vector<dialer::RecentCall> ReadCalls(const machine::Options& options) {
  machine::Backends backends(options);
  backends.ChangeNothing();
  return backends.HasRoot() ? dialer::ReadRecentCalls(backends.GetRegistry())
                            : std::vector<dialer::RecentCall>();
}

}  // namespace home
