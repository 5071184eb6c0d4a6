#include "tests/machine/simulation.h"

#include <gtest/gtest.h>

#include <atomic>
#include <vector>

namespace {

using machine::Simulation;
using platform::kNoLimit;
using platform::ThreadStart;
using platform::WaitResult;

TEST(Simulation, SleepTakesExactlyItsTime) {
  Simulation simulation;
  simulation.Sleep(3000);
  EXPECT_EQ(simulation.GetTickCount(), 3000U);
  simulation.Sleep(0);
  EXPECT_EQ(simulation.GetTickCount(), 3000U);
}

TEST(Simulation, TheTickCountWrapsAndTheElapsedTimeDoesNot) {
  Simulation simulation(0xFFFF'FFFEU);
  EXPECT_EQ(simulation.GetTickCount(), 0xFFFF'FFFEU);
  simulation.Sleep(3);
  EXPECT_EQ(simulation.GetTickCount(), 1U);
  simulation.Sleep(0xFFFF'FFFFU);
  simulation.Sleep(2);
  EXPECT_EQ(simulation.GetTickCount(), 2U);
  EXPECT_EQ(simulation.GetElapsed(), 0x1'0000'0004U);
}

TEST(Simulation, TheCalendarGoesOnWithTheClock) {
  Simulation simulation(0xFFFF'FFFEU);
  simulation.Sleep(999);
  EXPECT_EQ(simulation.GetUnixTime(), Simulation::kStartTime);
  simulation.Sleep(2 * 24 * 3'600'000U + 1);
  EXPECT_EQ(simulation.GetUnixTime(), Simulation::kStartTime + std::int64_t{2} * 24 * 3600 + 1);
}

TEST(Simulation, TimeStandsStillWhileAThreadRuns) {
  Simulation simulation;
  const auto thread = simulation.Start([&] { simulation.Sleep(1); }, ThreadStart::kRunning).value();
  for (int i = 0; i < 1000; ++i) {
    ASSERT_EQ(simulation.GetTickCount(), 0U);
  }
  ASSERT_EQ(thread->Wait(kNoLimit), WaitResult::kSignalled);
  EXPECT_EQ(simulation.GetTickCount(), 1U);
}

TEST(Simulation, AWaitThatTimesOutTakesExactlyItsLimit) {
  Simulation simulation;
  const auto event = simulation.CreateManualResetEvent().value();
  EXPECT_EQ(event->Wait(10000), WaitResult::kTimedOut);
  EXPECT_EQ(simulation.GetTickCount(), 10000U);
}

TEST(Simulation, ASignalledWaitTakesNoTime) {
  Simulation simulation;
  const auto event = simulation.CreateManualResetEvent().value();
  event->Set();
  EXPECT_EQ(event->Wait(10000), WaitResult::kSignalled);
  EXPECT_EQ(simulation.GetTickCount(), 0U);
}

TEST(Simulation, OfTwoWaitsThatEndAtOneTimeTheEarlierIsServedFirst) {
  Simulation simulation;
  const auto event = simulation.CreateManualResetEvent().value();
  const auto setter = simulation
                          .Start(
                              [&] {
                                simulation.Sleep(5);
                                event->Set();
                              },
                              ThreadStart::kRunning)
                          .value();
  // The setter begins to sleep only when this wait has begun, and so sets the event too late.
  EXPECT_EQ(event->Wait(5), WaitResult::kTimedOut);
  ASSERT_EQ(setter->Wait(kNoLimit), WaitResult::kSignalled);
  EXPECT_EQ(simulation.GetTickCount(), 5U);
}

TEST(Simulation, IfAllWaitWithoutLimitEveryWaitFails) {
  Simulation simulation;
  const auto event = simulation.CreateManualResetEvent().value();
  std::vector<WaitResult> inThreads(2, WaitResult::kSignalled);
  const auto first =
      simulation.Start([&] { inThreads[0] = event->Wait(kNoLimit); }, ThreadStart::kRunning)
          .value();
  const auto second =
      simulation.Start([&] { inThreads[1] = first->Wait(kNoLimit); }, ThreadStart::kRunning)
          .value();
  EXPECT_EQ(event->Wait(kNoLimit), WaitResult::kFailed);
  EXPECT_EQ(first->Wait(kNoLimit), WaitResult::kSignalled);
  EXPECT_EQ(second->Wait(kNoLimit), WaitResult::kSignalled);
  EXPECT_EQ(inThreads, std::vector<WaitResult>(2, WaitResult::kFailed));
}

TEST(Simulation, AWaitForASuspendedThreadFailsIfNobodyCanResumeIt) {
  Simulation simulation;
  const auto thread = simulation.Start([] {}, ThreadStart::kSuspended).value();
  EXPECT_EQ(thread->Wait(kNoLimit), WaitResult::kFailed);
  EXPECT_EQ(simulation.GetTickCount(), 0U);
}

TEST(Simulation, AThreadWithALimitKeepsTheOthersFromFailing) {
  Simulation simulation;
  const auto event = simulation.CreateManualResetEvent().value();
  const auto sleeper = simulation
                           .Start(
                               [&] {
                                 simulation.Sleep(0xFFFF'FFFFU);
                                 event->Set();
                               },
                               ThreadStart::kRunning)
                           .value();
  EXPECT_EQ(event->Wait(kNoLimit), WaitResult::kSignalled);
  EXPECT_EQ(simulation.GetElapsed(), 0xFFFF'FFFFU);
}

TEST(Simulation, TheDestructionOfAThreadThatWaitsForEverWakesIt) {
  Simulation simulation;
  const auto event = simulation.CreateManualResetEvent().value();
  WaitResult result = WaitResult::kSignalled;
  simulation.Start([&] { result = event->Wait(kNoLimit); }, ThreadStart::kRunning).value().reset();
  EXPECT_EQ(result, WaitResult::kFailed);
}

TEST(Simulation, AWaitForAnEventThatIsDestroyedFails) {
  Simulation simulation;
  auto event = simulation.CreateManualResetEvent().value();
  WaitResult result = WaitResult::kSignalled;
  const auto thread =
      simulation.Start([&] { result = event->Wait(1000); }, ThreadStart::kRunning).value();
  simulation.Sleep(1);
  event.reset();
  ASSERT_EQ(thread->Wait(kNoLimit), WaitResult::kSignalled);
  EXPECT_EQ(result, WaitResult::kFailed);
  EXPECT_EQ(simulation.GetTickCount(), 1U);
}

TEST(Simulation, AThreadThatOnlyAsksLetsOthersRun) {
  Simulation simulation;
  const auto event = simulation.CreateManualResetEvent().value();
  const auto setter = simulation.Start([&] { event->Set(); }, ThreadStart::kRunning).value();
  int asked = 0;
  while (event->Wait(0) == WaitResult::kTimedOut && asked < 1000) {
    ++asked;
  }
  EXPECT_LT(asked, 1000);
}

TEST(Simulation, OnlyOneThreadRunsAtATime) {
  Simulation simulation;
  std::atomic<int> running = 0;
  std::atomic<int> overlaps = 0;
  std::vector<std::unique_ptr<platform::Thread>> threads;
  for (std::uint32_t t = 0; t < 8; ++t) {
    threads.push_back(simulation
                          .Start(
                              [&, t] {
                                for (std::uint32_t i = 0; i < 50; ++i) {
                                  overlaps += running.fetch_add(1) == 0 ? 0 : 1;
                                  --running;
                                  simulation.Sleep((t + i) % 3);
                                }
                              },
                              ThreadStart::kRunning)
                          .value());
  }
  threads.clear();
  EXPECT_EQ(overlaps, 0);
}

TEST(Simulation, AHandleMayOutliveIt) {
  auto simulation = std::make_unique<Simulation>();
  const auto event = simulation->CreateManualResetEvent().value();
  const auto thread = simulation->Start([&] { event->Set(); }, ThreadStart::kRunning).value();
  simulation.reset();
  EXPECT_EQ(thread->Wait(kNoLimit), WaitResult::kSignalled);
  EXPECT_EQ(event->Wait(0), WaitResult::kSignalled);
}

TEST(Simulation, TwoOfThemDoNotDisturbEachOther) {
  Simulation outer;
  Simulation inner(100);
  std::uint32_t inside = 0;
  const auto thread = outer
                          .Start(
                              [&] {
                                inner.Sleep(5);
                                inside = inner.GetTickCount();
                                outer.Sleep(1);
                              },
                              ThreadStart::kRunning)
                          .value();
  ASSERT_EQ(thread->Wait(kNoLimit), WaitResult::kSignalled);
  EXPECT_EQ(inside, 105U);
  EXPECT_EQ(outer.GetTickCount(), 1U);
}

}  // namespace
