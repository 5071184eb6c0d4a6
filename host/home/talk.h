#pragma once

#include <QObject>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "dialer/conversation.h"
#include "host/home/work.h"
#include "platform/threads.h"

namespace home {

/// A step of a conversation with all that is shown of it.
struct TalkStep {
  dialer::Step step = dialer::Step::kSpeak;
  std::vector<dialer::Callee> callees;
  dialer::NotHeard notHeard = dialer::NotHeard::kStopped;
  std::u16string outcome;  ///< What became of the call or of the take. A part of a sentence.
  bool canHangUp = false;
};

/// What a conversation needs of the machine.
struct TalkTools {
  platform::Threads& threads;
  /// Makes the parts of a conversation, and calls `use` with them. Called on the thread of the
  /// conversation. Returns a sentence if there can be none, and does not call `use` then.
  std::function<std::u16string(const std::function<void(const dialer::Parts& parts)>& use)> prepare;
};

/// Holds one conversation at a time with the dialer, on a thread of its own. A new one ends the one
/// before.
///
/// Used by the thread that runs the event loop, which also calls what is handed over. Nothing is
/// called after Stop or after the destructor.
class Talk {
 public:
  using KeptAnswer = std::function<void(const Outcome& outcome)>;
  struct Events {
    std::function<void(const TalkStep& step)> show;
    std::function<void(const dialer::ListeningProgress& progress)> listening;
    /// So much time is left to stop a call, in milliseconds.
    std::function<void(std::uint32_t left)> waiting;
    /// Keeps a take as one more tag, and calls `answer` then.
    std::function<void(const Lesson& lesson, KeptAnswer answer)> keep;
    /// It is over. `problem` is a sentence if it did not begin.
    std::function<void(const std::u16string& problem)> ended;
  };

  /// What `tools` refers to outlives this.
  Talk(TalkTools tools, Events events);
  Talk(const Talk&) = delete;
  Talk& operator=(const Talk&) = delete;
  ~Talk();

  /// Hears a name and calls the person who is meant.
  void Hear();
  /// Calls a number that the user chose by hand.
  void Call(const dialer::Candidate& candidate);
  void Reply(dialer::Reply reply);
  /// Ends what goes on. A call that was handed over goes on elsewhere.
  void Stop();

 private:
  class Job;

  void Start(std::function<void(dialer::Conversation&, const dialer::Parts&)> talk);

  const TalkTools m_tools;
  const Events m_events;
  const std::unique_ptr<QObject> m_context;  ///< What is posted to it goes with it.
  std::shared_ptr<Job> m_job;
  /// Of the latest conversation. The next one waits for it, so that the microphone is free.
  std::shared_ptr<platform::Thread> m_thread;
};

}  // namespace home
