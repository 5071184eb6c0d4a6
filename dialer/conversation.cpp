#include "dialer/conversation.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

// A conversation is a small machine of states. Each function shows one step, waits for the user if
// the step is a question, and returns what comes next. What is remembered between tries is who was
// rejected, the takes that count together, and one take that is worth keeping.
namespace dialer {
namespace {

using voicemath::Verdict;

bool IsOfSameNumber(const Candidate& a, const Candidate& b) {
  return a.tag == b.tag || (a.oid && a.oid == b.oid && a.phoneKind == b.phoneKind);
}

bool Has(const voicemath::TakeQuality& quality, Verdict verdict) {
  return std::ranges::count(quality.verdicts, verdict) != 0;
}

/// Listens to its face while a voice tag is played, so that a key is not lost.
class Interruptible final : public Waiter {
 public:
  explicit Interruptible(Face& face) : m_face(face) {}

  [[nodiscard]] bool Wait(std::uint32_t milliseconds) override {
    m_reply = m_face.Await(milliseconds);
    return m_reply.kind == Reply::Kind::kNone;
  }
  [[nodiscard]] Reply GetReply() const { return m_reply; }

 private:
  Face& m_face;
  Reply m_reply;
};

/// Shows that a modem dials: whoever makes a call in any other way does not wait.
class Dialling final : public Waiter {
 public:
  Dialling(Face& face, const StepShown& shown) : m_face(face), m_shown(shown) {}

  [[nodiscard]] bool Wait(std::uint32_t milliseconds) override {
    if (!m_isShown) {
      m_isShown = true;
      m_face.Show(m_shown);
    }
    return m_face.Wait(milliseconds);
  }

 private:
  Face& m_face;
  const StepShown m_shown;
  bool m_isShown = false;
};

}  // namespace

Conversation::Conversation(const Parts& parts, Face& face, Manner manner)
    : m_parts(parts), m_face(face), m_manner(manner) {}

bool Conversation::HearAndCall() {
  if (m_parts.tags.empty()) {
    Show(Step::kNothingTaught);
    return false;
  }
  Next next = Next::kAgain;
  while (next == Next::kAgain) {
    next = Hear();
  }
  return next == Next::kCall && MakeCall();
}

bool Conversation::Call(const Callee& callee) {
  m_callees = {callee};
  return Confirm() == Next::kCall && MakeCall();
}

Conversation::Next Conversation::End(Step step) {
  Show(step);
  return Next::kEnd;
}

Conversation::Next Conversation::Hear() {
  m_callees.clear();
  Show(Step::kSpeak);
  const auto heard = Listen(m_parts.sound, m_face);
  if (!heard && heard.error() != NotHeard::kStopped) {
    m_face.Show({.step = Step::kNotHeard, .notHeard = heard.error()});
    return Next::kEnd;
  }
  if (!heard) {
    return End(Step::kStopped);
  }
  if (Has(heard->quality, Verdict::kSilent)) {
    return End(Step::kSilent);
  }
  return Understand(*heard);
}

Conversation::Next Conversation::Understand(const Heard& heard) {
  if (Has(heard.quality, Verdict::kNoSpeech)) {
    return TryAgain(Step::kNoSpeech);
  }
  m_takes.push_back(heard.samples);
  const std::vector<Take> takes(m_takes.begin(), m_takes.end());
  m_isLastTakeGood = heard.quality.verdicts.empty();
  switch (LookUp(m_parts.recognize(takes))) {
    case Certainty::kSure:
      m_failedTries = 0;
      return Confirm();
    case Certainty::kOneOf:
      m_failedTries = 0;
      return Choose(Step::kOneOf);
    case Certainty::kUnknown:
      break;
  }
  // What was said may have been no name at all, so it is no evidence for the next try.
  m_takes.clear();
  m_callees.clear();
  return TryAgain(Step::kUnknown);
}

/// Fills the callees. Returns how sure the answer is without those who were rejected.
Certainty Conversation::LookUp(const Answer& answer) {
  m_callees.clear();
  for (const Candidate& candidate : answer.candidates) {
    if (std::ranges::none_of(m_rejected, [&](const Candidate& rejected) {
          return IsOfSameNumber(rejected, candidate);
        })) {
      m_callees.push_back(m_parts.lookUp(candidate));
    }
  }
  if (m_callees.empty()) {
    return Certainty::kUnknown;
  }
  // If the best one was rejected, nobody has found out how sure the next one is.
  const bool isBest = IsOfSameNumber(m_callees[0].candidate, answer.candidates[0]);
  return answer.certainty == Certainty::kSure && !isBest ? Certainty::kOneOf : answer.certainty;
}

Conversation::Next Conversation::TryAgain(Step why) {
  Show(why);
  // A file would say the same again.
  if (++m_failedTries == kMostTries || m_parts.sound.hearsFile) {
    return End(Step::kNotUnderstood);
  }
  return Next::kAgain;
}

/// Lets the user stop the call of the first callee.
Conversation::Next Conversation::Confirm() {
  Show(Step::kSure);
  if (!m_callees[0].fault.empty()) {
    return End(Step::kCannotCall);
  }
  if (!m_manner.waits) {
    return Next::kCall;
  }
  if (!m_manner.asks) {
    return End(Step::kNobodyAsked);
  }
  const Reply reply = AwaitSecondThoughts();
  switch (reply.kind) {
    case Reply::Kind::kNone:
    case Reply::Kind::kYes:
      return Next::kCall;
    case Reply::Kind::kNo:
      return m_takes.empty() ? End(Step::kStopped) : Correct();
    case Reply::Kind::kAgain:
      return m_takes.empty() ? End(Step::kStopped) : Next::kAgain;
    case Reply::Kind::kChoice:
      return Accept(reply.choice);
    case Reply::Kind::kHangUp:
    case Reply::Kind::kStop:
      break;
  }
  return End(Step::kStopped);
}

/// Plays the voice tag, so that the user hears who was understood without looking, and waits.
Reply Conversation::AwaitSecondThoughts() {
  Interruptible waiter(m_face);
  // The time to think begins after the voice tag: before its end nobody can know who is called.
  const auto tag = std::ranges::find(m_parts.tags, m_callees[0].candidate.tag, &TaughtTag::name);
  if (tag != m_parts.tags.end() && Play(m_parts.sound, tag->samples, waiter) == Played::kStopped) {
    return waiter.GetReply();
  }
  return m_face.Await(kSecondThoughts);
}

Conversation::Next Conversation::Correct() {
  NoteMisheard();
  m_rejected.push_back(m_callees[0].candidate);
  m_callees.erase(m_callees.begin());
  return Choose(Step::kInstead);
}

Conversation::Next Conversation::Choose(Step step) {
  Show(step);
  if (!m_manner.asks) {
    return End(Step::kNobodyAsked);
  }
  for (;;) {
    const Reply reply = m_face.Await(platform::kNoLimit);
    if (reply.kind == Reply::Kind::kAgain) {
      return Next::kAgain;
    }
    if (reply.kind == Reply::Kind::kChoice && reply.choice < m_callees.size()) {
      return Accept(reply.choice);
    }
    if (reply.kind != Reply::Kind::kYes && reply.kind != Reply::Kind::kChoice) {
      return End(Step::kStopped);
    }
  }
}

/// The user chose a callee by hand. So nobody waits.
Conversation::Next Conversation::Accept(std::size_t choice) {
  if (choice >= m_callees.size()) {
    return End(Step::kStopped);
  }
  // The first callee is the one that was understood. Any other choice says that it was wrong.
  if (choice > 0) {
    NoteMisheard();
  }
  std::rotate(m_callees.begin(), m_callees.begin() + static_cast<std::ptrdiff_t>(choice),
              m_callees.begin() + static_cast<std::ptrdiff_t>(choice) + 1);
  return m_callees[0].fault.empty() ? Next::kCall : End(Step::kCannotCall);
}

/// The first take that was taken for somebody else is the one that the voice tags lack.
void Conversation::NoteMisheard() {
  if (m_misheard.empty() && !m_takes.empty() && m_isLastTakeGood) {
    m_misheard = m_takes.back();
  }
}

bool Conversation::MakeCall() {
  m_callees.erase(m_callees.begin() + 1, m_callees.end());  // The others are out of the question.
  Show(Step::kCalling);
  const bool mayHangUp = m_parts.hangUp != nullptr;
  Dialling waiter(m_face, {.step = Step::kDialling, .callees = m_callees, .canHangUp = mayHangUp});
  const CallResult call = m_parts.call(m_callees[0], waiter);
  m_canHangUp = mayHangUp && call && IsByModem(*call);
  m_face.Show({.step = call ? Step::kCalled : Step::kNotCalled,
               .callees = m_callees,
               .call = &call,
               .canHangUp = m_canHangUp});
  // A user who has just stopped a call is not asked anything more.
  if (call || call.error().problem != CallProblem::kStopped) {
    OfferToKeep();
  }
  StayInCall();
  return call.has_value();
}

/// Lets the user end the call. Whoever does anything else leaves it to itself.
void Conversation::StayInCall() {
  bool isStaying = m_canHangUp;
  while (isStaying) {
    Show(Step::kInCall);
    isStaying = EndsCall(m_face.Await(platform::kNoLimit)) && m_canHangUp;
  }
}

/// Returns whether the reply was about the call, and not about what is shown. Ends the call then.
bool Conversation::EndsCall(const Reply& reply) {
  if (reply.kind != Reply::Kind::kHangUp) {
    return false;
  }
  if (m_canHangUp) {
    const auto ended = m_parts.hangUp();
    m_canHangUp = !ended;
    const CallResult why = ended ? CallResult() : platform::Failure(ended.error());
    m_face.Show({.step = ended ? Step::kHungUp : Step::kNotHungUp,
                 .callees = m_callees,
                 .call = ended ? nullptr : &why,
                 .canHangUp = m_canHangUp});
  }
  return true;
}

void Conversation::OfferToKeep() {
  if (m_misheard.empty() || !m_manner.asks || !m_parts.keep) {
    return;
  }
  Reply reply;
  do {
    Show(Step::kOffer);
    reply = m_face.Await(platform::kNoLimit);
  } while (EndsCall(reply));
  if (reply.kind != Reply::Kind::kYes) {
    return;
  }
  const auto kept = m_parts.keep(m_callees[0], m_misheard);
  m_face.Show({.step = kept ? Step::kKept : Step::kNotKept,
               .callees = m_callees,
               .whyNotKept = kept ? std::string_view{} : std::string_view(kept.error())});
}

}  // namespace dialer
