#include <gtest/gtest.h>

#include "tests/contract/thread_backends.h"

namespace contract {
namespace {

class ClockCalls : public ThreadContract {};

TEST_P(ClockCalls, SleepLetsAtLeastItsTimePass) {
  for (const std::uint32_t milliseconds : {1U, 2U, 7U}) {
    const std::uint32_t before = Clock().GetTickCount();
    Clock().Sleep(milliseconds);
    EXPECT_GE(Clock().GetTickCount() - before, milliseconds);
  }
}

TEST_P(ClockCalls, ASleepOfNoTimeReturns) { Clock().Sleep(0); }

TEST_P(ClockCalls, TheTickCountNeverGoesBack) {
  std::uint32_t latest = Clock().GetTickCount();
  for (int i = 0; i < 1000; ++i) {
    const std::uint32_t now = Clock().GetTickCount();
    ASSERT_LT(now - latest, 0x8000'0000U);
    latest = now;
  }
}

TEST_P(ClockCalls, AllThreadsSeeOneTime) {
  const std::uint32_t before = Clock().GetTickCount();
  std::uint32_t inThread = 0;
  const auto thread = MustStart([&] {
    Clock().Sleep(1);
    inThread = Clock().GetTickCount();
  });
  ASSERT_EQ(thread->Wait(platform::kNoLimit), platform::WaitResult::kSignalled);
  const std::uint32_t after = Clock().GetTickCount();
  EXPECT_GE(inThread - before, 1U);
  EXPECT_LT(after - inThread, 0x8000'0000U);
}

TEST_P(ClockCalls, TheCalendarIsInThisCentury) {
  constexpr std::int64_t kYear2020 = 1'577'836'800;
  constexpr std::int64_t kYear2100 = 4'102'444'800;
  EXPECT_GT(Clock().GetUnixTime(), kYear2020);
  EXPECT_LT(Clock().GetUnixTime(), kYear2100);
}

INSTANTIATE_TEST_SUITE_P(EachBackend, ClockCalls, testing::ValuesIn(AllThreadBackends()),
                         ThreadBackendName);

}  // namespace
}  // namespace contract
