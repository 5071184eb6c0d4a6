#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <limits>
#include <mutex>
#include <vector>

#include "platform/threads.h"

namespace machine {

/// Something that threads wait for: an event, or the end of a thread. Guarded by its scheduler.
struct Signal {
  bool isSet = false;
};

/// One thread as its scheduler sees it. Guarded by the scheduler, but for `turn`.
struct Participant {
  std::condition_variable turn;
  Signal ended;
  bool isSuspended = false;
  bool isAbandoned = false;  ///< Never to run; its body is left out.

  // While blocked:
  const Signal* awaited = nullptr;
  std::uint64_t wakeAt = 0;
  platform::WaitResult result = platform::WaitResult::kFailed;
};

/// Lets real threads run strictly one at a time, in an order that is the same in every run, by a
/// clock of its own.
///
/// A thread gives up its turn in Wait and at its end only. Threads that may run take their turns in
/// the order in which they became so. If none may run, the time moves on to the earliest limit
/// of a wait. If no wait has a limit, none can ever end, and all fail.
///
/// The thread that uses the scheduler without having been started for it is its host; there is one
/// host at a time, and it has the first turn.
class Scheduler {
 public:
  static constexpr std::uint64_t kNever = std::numeric_limits<std::uint64_t>::max();

  /// Milliseconds since the start.
  [[nodiscard]] std::uint64_t Now();

  /// Waits until `signal` is set, or with none for the time alone; kNoLimit milliseconds are
  /// without limit if there is a signal.
  platform::WaitResult Wait(const Signal* signal, std::uint32_t milliseconds);

  void Set(Signal& signal);
  void Reset(Signal& signal);

  /// Ends every wait for a signal that is going away: it fails.
  void Forget(const Signal& signal);

  /// Adds a thread, which may run or waits for Resume.
  void Add(Participant& thread, platform::ThreadStart start);
  void Resume(Participant& thread);

  /// Takes a thread that still waits for Resume out for good. Returns false for any other.
  [[nodiscard]] bool Abandon(Participant& thread);

  /// The first call on a thread that was added; returns false if it never runs.
  [[nodiscard]] bool Enter(Participant& thread);
  /// The last call on a thread that was entered.
  void Leave(Participant& thread);

  [[nodiscard]] bool IsSet(const Signal& signal);
  /// Whether the calling thread is this one.
  [[nodiscard]] bool IsSelf(const Participant& thread);

 private:
  [[nodiscard]] Participant& Self();
  void MakeReady(Participant& thread, platform::WaitResult result);
  /// Makes every blocked thread that `isMeant` ready, in the order in which they were blocked.
  template <typename IsMeant>
  void Wake(platform::WaitResult result, IsMeant isMeant);
  /// Gives the turn to the next thread, which may be the caller.
  void PassOn();
  void MoveOn();
  void AwaitTurn(std::unique_lock<std::mutex>& lock, Participant& thread);

  std::mutex m_mutex;
  Participant m_host;
  Participant* m_running = &m_host;
  std::deque<Participant*> m_ready;
  std::vector<Participant*> m_blocked;  ///< In the order in which they were blocked.
  std::uint64_t m_now = 0;
};

}  // namespace machine
