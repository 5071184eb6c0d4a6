#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "dialer/callee.h"
#include "dialer/listening.h"
#include "dialer/recognizer.h"
#include "dialer/taught_tags.h"
#include "dialer/ways.h"
#include "platform/threads.h"

namespace dialer {

/// A step of a conversation, for a face that shows it.
enum class Step : std::uint8_t {
  // A step of this first group is followed by another one.
  kSpeak,     ///< It listens. The face gets the progress.
  kNoSpeech,  ///< Nobody spoke. It listens again, or it was the last try.
  kUnknown,   ///< It was nobody who is taught. It listens again, or it was the last try.
  kSure,      ///< The first callee is called after a short while. The user may stop that.
  kOneOf,     ///< The user chooses one of the callees.
  kInstead,   ///< The user said no, and may choose one of these, of which there may be none.
  kCalling,   ///< The callee, who is the only one from here on, is being called.
  kDialling,  ///< A modem dials, which may take a minute. Whatever the user does ends that.
  kOffer,     ///< The user may keep the take as one more of the callee.
  kKept,
  kNotKept,    ///< `whyNotKept` says why.
  kInCall,     ///< The modem's call goes on, and the user may end it.
  kNotHungUp,  ///< `call` says why the call could not be ended.
  // A conversation ends with one of these, or with what comes from kCalled on.
  kNothingTaught,
  kNotHeard,       ///< `notHeard` says why.
  kSilent,         ///< The microphone gives nothing but silence.
  kNobodyAsked,    ///< Somebody would have to agree, and there is nobody to ask.
  kCannotCall,     ///< The first callee's fault says why.
  kNotUnderstood,  ///< The last try came to nothing.
  kStopped,        ///< The user wanted no more.
  kNotCalled,      ///< `call` says why.
  kCalled,         ///< `call` says how. kOffer and kInCall may follow.
  kHungUp,         ///< The user ended the call. kOffer may follow.
};

/// What a face shows. The references hold while it is shown.
struct StepShown {
  Step step;
  std::span<const Callee> callees{};
  NotHeard notHeard = NotHeard::kStopped;
  const CallResult* call = nullptr;  ///< Null if there was no call.
  std::string_view whyNotKept{};     ///< As a Callee's fault is.
  bool canHangUp = false;  ///< There is a call, or one is being made, and it can be ended.
};

/// What a user does while a step is shown.
struct Reply {
  enum class Kind : std::uint8_t {
    kNone,    ///< Nothing, in all that time.
    kYes,     ///< Call at once, or keep the take.
    kNo,      ///< Not this one.
    kAgain,   ///< The name will be said again.
    kChoice,  ///< `choice` is the index of a callee that is shown.
    kHangUp,  ///< The call is to end, whether it is being made or goes on.
    kStop,    ///< No more of it all.
  };
  Kind kind = Kind::kNone;
  std::size_t choice = 0;
};

/// A terminal or a window, through which a conversation talks with its user. Called on the thread
/// of the conversation.
class Face : public Listener {
 public:
  virtual void Show(const StepShown& shown) = 0;

  /// Waits for the user, for at most `milliseconds`. platform::kNoLimit waits without limit.
  [[nodiscard]] virtual Reply Await(std::uint32_t milliseconds) = 0;

  /// Whatever the user does stops listening, and a call that is being made.
  [[nodiscard]] bool Wait(std::uint32_t milliseconds) final {
    return Await(milliseconds).kind == Reply::Kind::kNone;
  }
};

/// What a conversation is made of. All of it outlives the conversation.
struct Parts {
  std::span<const TaughtTag> tags;
  Sound sound;
  /// Returns who is meant by takes of one name.
  std::function<Answer(std::span<const Take> takes)> recognize;
  /// Returns what the contacts know of a candidate.
  std::function<Callee(const Candidate& candidate)> lookUp;
  /// Calls a callee without fault. The waiter lets the user stop it.
  std::function<CallResult(const Callee& callee, Waiter& waiter)> call;
  /// Keeps a take as one more voice tag of this number. Fails with what a Callee's fault is. May be
  /// empty, and nothing is offered then.
  std::function<platform::Result<void, std::string>(const Callee& callee, Take take)> keep;
  /// Ends the call that a modem made. May be empty, and the user cannot end a call here then.
  std::function<platform::Result<void, CallFault>()> hangUp{};
};

/// How a conversation goes.
struct Manner {
  bool waits = true;  ///< Before a call. If not, a name that is sure is called at once.
  bool asks = true;   ///< There is a user to ask, and one who can stop a call.
};

/// Milliseconds in which a user can stop a call before it begins.
inline constexpr std::uint32_t kSecondThoughts = 2000;
/// After so many tries in a row that came to nothing, the conversation ends.
inline constexpr int kMostTries = 3;

/// One call, from the name that is said to the number that is dialled. Writes nothing by itself.
/// Used by one thread.
class Conversation {
 public:
  Conversation(const Parts& parts, Face& face, Manner manner);

  /// Hears a name and calls the person who is meant. Returns whether somebody was called.
  [[nodiscard]] bool HearAndCall();

  /// Calls somebody who was chosen by hand. Returns whether the call was made.
  [[nodiscard]] bool Call(const Callee& callee);

 private:
  /// What comes after a step.
  enum class Next : std::uint8_t { kEnd, kAgain, kCall };

  [[nodiscard]] Next Hear();
  [[nodiscard]] Next Understand(const Heard& heard);
  [[nodiscard]] Next TryAgain(Step why);
  [[nodiscard]] Next Confirm();
  [[nodiscard]] Reply AwaitSecondThoughts();
  [[nodiscard]] Next Correct();
  [[nodiscard]] Next Choose(Step step);
  [[nodiscard]] Next Accept(std::size_t choice);
  [[nodiscard]] Next End(Step step);
  [[nodiscard]] Certainty LookUp(const Answer& answer);
  void NoteMisheard();
  [[nodiscard]] bool MakeCall();
  void OfferToKeep();
  void StayInCall();
  [[nodiscard]] bool EndsCall(const Reply& reply);
  void Show(Step step) {
    m_face.Show({.step = step, .callees = m_callees, .canHangUp = m_canHangUp});
  }

  const Parts& m_parts;
  Face& m_face;
  const Manner m_manner;
  std::vector<Callee> m_callees;                   ///< Who may be meant, the likeliest first.
  std::vector<Candidate> m_rejected;               ///< Who was not meant, as the user says.
  std::vector<std::vector<std::int16_t>> m_takes;  ///< Of the name, as far as they count.
  bool m_isLastTakeGood = false;                   ///< It would be a good voice tag.
  std::vector<std::int16_t> m_misheard;  ///< A good take of which the user said who was meant.
  int m_failedTries = 0;
  bool m_canHangUp = false;  ///< Of the call that a modem has made.
};

}  // namespace dialer
