#include "tests/machine/scheduler.h"

#include <algorithm>

namespace machine {
namespace {

using platform::WaitResult;

/// What the calling thread was started as, and for which scheduler.
thread_local const Scheduler* t_scheduler = nullptr;
thread_local Participant* t_self = nullptr;

}  // namespace

std::uint64_t Scheduler::Now() {
  const std::lock_guard lock(m_mutex);
  return m_now;
}

Participant& Scheduler::Self() { return t_scheduler == this ? *t_self : m_host; }

bool Scheduler::IsSelf(const Participant& thread) {
  return t_scheduler == this && t_self == &thread;
}

WaitResult Scheduler::Wait(const Signal* signal, std::uint32_t milliseconds) {
  std::unique_lock lock(m_mutex);
  Participant& self = Self();
  // The turn is given up in any case, so that a thread which only ever asks lets others run.
  if (signal != nullptr && signal->isSet) {
    MakeReady(self, WaitResult::kSignalled);
  } else if (milliseconds == 0) {
    MakeReady(self, WaitResult::kTimedOut);
  } else {
    const bool hasLimit = signal == nullptr || milliseconds != platform::kNoLimit;
    self.awaited = signal;
    self.wakeAt = hasLimit ? m_now + milliseconds : kNever;
    m_blocked.push_back(&self);
  }
  PassOn();
  AwaitTurn(lock, self);
  return self.result;
}

void Scheduler::Set(Signal& signal) {
  const std::lock_guard lock(m_mutex);
  signal.isSet = true;
  Wake(WaitResult::kSignalled, [&](const Participant& p) { return p.awaited == &signal; });
}

void Scheduler::Reset(Signal& signal) {
  const std::lock_guard lock(m_mutex);
  signal.isSet = false;
}

void Scheduler::Forget(const Signal& signal) {
  const std::lock_guard lock(m_mutex);
  Wake(WaitResult::kFailed, [&](const Participant& p) { return p.awaited == &signal; });
}

bool Scheduler::IsSet(const Signal& signal) {
  const std::lock_guard lock(m_mutex);
  return signal.isSet;
}

void Scheduler::Add(Participant& thread, platform::ThreadStart start) {
  const std::lock_guard lock(m_mutex);
  thread.isSuspended = start == platform::ThreadStart::kSuspended;
  if (!thread.isSuspended) {
    m_ready.push_back(&thread);
  }
}

void Scheduler::Resume(Participant& thread) {
  const std::lock_guard lock(m_mutex);
  if (thread.isSuspended) {
    thread.isSuspended = false;
    m_ready.push_back(&thread);
  }
}

bool Scheduler::Abandon(Participant& thread) {
  const std::lock_guard lock(m_mutex);
  if (!thread.isSuspended) {
    return false;
  }
  thread.isAbandoned = true;
  thread.turn.notify_all();
  return true;
}

bool Scheduler::Enter(Participant& thread) {
  std::unique_lock lock(m_mutex);
  t_scheduler = this;
  t_self = &thread;
  AwaitTurn(lock, thread);
  return !thread.isAbandoned;
}

void Scheduler::Leave(Participant& thread) {
  const std::lock_guard lock(m_mutex);
  thread.ended.isSet = true;
  Wake(WaitResult::kSignalled, [&](const Participant& p) { return p.awaited == &thread.ended; });
  PassOn();
}

void Scheduler::MakeReady(Participant& thread, WaitResult result) {
  thread.awaited = nullptr;
  thread.result = result;
  m_ready.push_back(&thread);
}

template <typename IsMeant>
void Scheduler::Wake(WaitResult result, IsMeant isMeant) {
  const auto firstWoken =
      std::stable_partition(m_blocked.begin(), m_blocked.end(),
                            [&](const Participant* blocked) { return !isMeant(*blocked); });
  std::for_each(firstWoken, m_blocked.end(),
                [&](Participant* thread) { MakeReady(*thread, result); });
  m_blocked.erase(firstWoken, m_blocked.end());
}

void Scheduler::MoveOn() {
  std::uint64_t earliest = kNever;
  for (const Participant* blocked : m_blocked) {
    earliest = std::min(earliest, blocked->wakeAt);
  }
  if (earliest == kNever) {
    Wake(WaitResult::kFailed, [](const Participant&) { return true; });
    return;
  }
  m_now = earliest;
  Wake(WaitResult::kTimedOut, [&](const Participant& p) { return p.wakeAt == earliest; });
}

void Scheduler::PassOn() {
  if (m_ready.empty()) {
    MoveOn();
  }
  // Never empty now: the host is running, ready or blocked as long as the scheduler lives.
  m_running = m_ready.front();
  m_ready.pop_front();
  m_running->turn.notify_all();
}

void Scheduler::AwaitTurn(std::unique_lock<std::mutex>& lock, Participant& thread) {
  thread.turn.wait(lock, [&] { return m_running == &thread || thread.isAbandoned; });
}

}  // namespace machine
