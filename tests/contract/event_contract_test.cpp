#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <vector>

#include "tests/contract/thread_backends.h"

namespace contract {
namespace {

using platform::kNoLimit;
using platform::WaitResult;

class EventCalls : public ThreadContract {};

TEST_P(EventCalls, ANewEventIsNotSignalled) {
  const auto event = MustCreateEvent();
  EXPECT_EQ(event->Wait(0), WaitResult::kTimedOut);
  EXPECT_EQ(event->Wait(2), WaitResult::kTimedOut);
}

TEST_P(EventCalls, ASetEventLetsEveryWaitPassUntilItIsReset) {
  const auto event = MustCreateEvent();
  event->Set();
  EXPECT_EQ(event->Wait(0), WaitResult::kSignalled);
  EXPECT_EQ(event->Wait(kNoLimit), WaitResult::kSignalled);
  event->Set();
  EXPECT_EQ(event->Wait(1), WaitResult::kSignalled);
  event->Reset();
  EXPECT_EQ(event->Wait(0), WaitResult::kTimedOut);
}

TEST_P(EventCalls, TwoSetsBeforeAResetCountAsOne) {
  const auto event = MustCreateEvent();
  event->Set();
  event->Set();
  event->Reset();
  EXPECT_EQ(event->Wait(0), WaitResult::kTimedOut);
}

TEST_P(EventCalls, AWaitTakesAtLeastItsLimit) {
  const auto event = MustCreateEvent();
  const std::uint32_t before = Clock().GetTickCount();
  ASSERT_EQ(event->Wait(5), WaitResult::kTimedOut);
  // The clocks of the wait and of the tick count may round differently.
  EXPECT_GE(Clock().GetTickCount() - before, 4U);
}

TEST_P(EventCalls, SetLetsAllWaitersPass) {
  const auto event = MustCreateEvent();
  std::atomic<int> passed = 0;
  std::vector<std::unique_ptr<platform::Thread>> waiters;
  for (int i = 0; i < 8; ++i) {
    waiters.push_back(MustStart([&] {
      if (event->Wait(10000) == WaitResult::kSignalled) {
        ++passed;
      }
    }));
  }
  Clock().Sleep(1);
  event->Set();
  for (const auto& waiter : waiters) {
    ASSERT_EQ(waiter->Wait(kNoLimit), WaitResult::kSignalled);
  }
  EXPECT_EQ(passed, 8);
}

TEST_P(EventCalls, ASetThatIsResetAtOnceStillReleasesWhoWaited) {
  const auto event = MustCreateEvent();
  const auto waiter = MustStart([&] { static_cast<void>(event->Wait(kNoLimit)); });
  // The waiter may not wait yet in the first rounds.
  WaitResult ended = WaitResult::kTimedOut;
  for (int round = 0; round < 10000 && ended == WaitResult::kTimedOut; ++round) {
    event->Set();
    event->Reset();
    ended = waiter->Wait(1);
  }
  EXPECT_EQ(ended, WaitResult::kSignalled);
  event->Set();
}

TEST_P(EventCalls, TwoThreadsTakeTurnsByEvents) {
  constexpr int kRounds = 200;
  const auto ping = MustCreateEvent();
  const auto pong = MustCreateEvent();
  std::string log;
  const auto player = MustStart([&] {
    for (int i = 0; i < kRounds; ++i) {
      if (ping->Wait(kNoLimit) != WaitResult::kSignalled) {
        return;
      }
      ping->Reset();
      log += 'b';
      pong->Set();
    }
  });
  for (int i = 0; i < kRounds; ++i) {
    log += 'a';
    ping->Set();
    ASSERT_EQ(pong->Wait(kNoLimit), WaitResult::kSignalled);
    pong->Reset();
  }
  ASSERT_EQ(player->Wait(kNoLimit), WaitResult::kSignalled);
  std::string expected;
  for (int i = 0; i < kRounds; ++i) {
    expected += "ab";
  }
  EXPECT_EQ(log, expected);
}

INSTANTIATE_TEST_SUITE_P(EachBackend, EventCalls, testing::ValuesIn(AllThreadBackends()),
                         ThreadBackendName);

}  // namespace
}  // namespace contract
