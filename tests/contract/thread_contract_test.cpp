#include <gtest/gtest.h>

#include <atomic>
#include <vector>

#include "tests/contract/thread_backends.h"

namespace contract {
namespace {

using platform::kNoLimit;
using platform::ThreadStart;
using platform::WaitResult;

class ThreadCalls : public ThreadContract {};

TEST_P(ThreadCalls, AStartedThreadRunsToItsEnd) {
  bool hasRun = false;
  const auto thread = MustStart([&] { hasRun = true; });
  EXPECT_EQ(thread->Wait(kNoLimit), WaitResult::kSignalled);
  EXPECT_TRUE(hasRun);
}

TEST_P(ThreadCalls, AnEndedThreadIsWaitedForAgainAtOnce) {
  const auto thread = MustStart([] {});
  ASSERT_EQ(thread->Wait(kNoLimit), WaitResult::kSignalled);
  EXPECT_EQ(thread->Wait(0), WaitResult::kSignalled);
  EXPECT_EQ(thread->Wait(kNoLimit), WaitResult::kSignalled);
}

TEST_P(ThreadCalls, AWaitForAThreadThatGoesOnEndsAtItsLimit) {
  const auto event = MustCreateEvent();
  const auto thread = MustStart([&] { static_cast<void>(event->Wait(kNoLimit)); });
  EXPECT_EQ(thread->Wait(0), WaitResult::kTimedOut);
  EXPECT_EQ(thread->Wait(2), WaitResult::kTimedOut);
  event->Set();
  EXPECT_EQ(thread->Wait(kNoLimit), WaitResult::kSignalled);
}

TEST_P(ThreadCalls, ASuspendedThreadRunsOnlyWhenResumed) {
  std::atomic<bool> hasRun = false;
  const auto thread = MustStart([&] { hasRun = true; }, ThreadStart::kSuspended);
  EXPECT_EQ(thread->Wait(2), WaitResult::kTimedOut);
  EXPECT_FALSE(hasRun);
  thread->Resume();
  EXPECT_EQ(thread->Wait(kNoLimit), WaitResult::kSignalled);
  EXPECT_TRUE(hasRun);
}

TEST_P(ThreadCalls, ResumingARunningOrEndedThreadHasNoEffect) {
  int runs = 0;
  const auto thread = MustStart([&] { ++runs; });
  thread->Resume();
  ASSERT_EQ(thread->Wait(kNoLimit), WaitResult::kSignalled);
  thread->Resume();
  EXPECT_EQ(thread->Wait(kNoLimit), WaitResult::kSignalled);
  EXPECT_EQ(runs, 1);
}

TEST_P(ThreadCalls, AThreadNeverResumedEndsWithoutHavingRun) {
  bool hasRun = false;
  MustStart([&] { hasRun = true; }, ThreadStart::kSuspended).reset();
  EXPECT_FALSE(hasRun);
}

TEST_P(ThreadCalls, DestructionWaitsForTheBody) {
  bool hasEnded = false;
  MustStart([&] {
    Clock().Sleep(2);
    hasEnded = true;
  }).reset();
  EXPECT_TRUE(hasEnded);
}

TEST_P(ThreadCalls, AnotherThreadMayResume) {
  bool hasRun = false;
  const auto worker = MustStart([&] { hasRun = true; }, ThreadStart::kSuspended);
  const auto monitor = MustStart([&] {
    Clock().Sleep(1);
    worker->Resume();
  });
  EXPECT_EQ(worker->Wait(kNoLimit), WaitResult::kSignalled);
  EXPECT_TRUE(hasRun);
}

TEST_P(ThreadCalls, AThreadMayStartOthers) {
  int runs = 0;
  const auto outer = MustStart([&] {
    const auto inner = MustStart([&] { ++runs; });
    EXPECT_EQ(inner->Wait(kNoLimit), WaitResult::kSignalled);
    ++runs;
  });
  ASSERT_EQ(outer->Wait(kNoLimit), WaitResult::kSignalled);
  EXPECT_EQ(runs, 2);
}

TEST_P(ThreadCalls, AThreadThatWaitsForItselfFails) {
  WaitResult inside = WaitResult::kTimedOut;
  platform::Thread* self = nullptr;
  const auto thread = MustStart([&] { inside = self->Wait(kNoLimit); }, ThreadStart::kSuspended);
  self = thread.get();
  thread->Resume();
  while (thread->Wait(kNoLimit) != WaitResult::kSignalled) {
  }
  EXPECT_EQ(inside, WaitResult::kFailed);
}

TEST_P(ThreadCalls, SeveralMayWaitForOneThread) {
  const auto event = MustCreateEvent();
  const auto awaited = MustStart([&] { static_cast<void>(event->Wait(kNoLimit)); });
  std::atomic<int> signalled = 0;
  std::vector<std::unique_ptr<platform::Thread>> waiters;
  for (int i = 0; i < 4; ++i) {
    waiters.push_back(MustStart([&] {
      if (awaited->Wait(10000) == WaitResult::kSignalled) {
        ++signalled;
      }
    }));
  }
  event->Set();
  for (const auto& waiter : waiters) {
    ASSERT_EQ(waiter->Wait(kNoLimit), WaitResult::kSignalled);
  }
  EXPECT_EQ(signalled, 4);
}

TEST_P(ThreadCalls, WhatTheBodyWroteIsSeenAfterTheWait) {
  std::vector<int> numbers;
  const auto thread = MustStart([&] {
    for (int i = 0; i < 1000; ++i) {
      numbers.push_back(i);
    }
  });
  ASSERT_EQ(thread->Wait(kNoLimit), WaitResult::kSignalled);
  ASSERT_EQ(numbers.size(), 1000U);
  EXPECT_EQ(numbers.back(), 999);
}

TEST_P(ThreadCalls, ABodyIsReleasedWithItsThread) {
  const auto held = std::make_shared<int>(1);
  MustStart([held] {}).reset();
  MustStart([held] {}, ThreadStart::kSuspended).reset();
  EXPECT_EQ(held.use_count(), 1);
}

INSTANTIATE_TEST_SUITE_P(EachBackend, ThreadCalls, testing::ValuesIn(AllThreadBackends()),
                         ThreadBackendName);

}  // namespace
}  // namespace contract
