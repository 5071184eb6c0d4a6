#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tests/machine/simulation.h"

namespace {

using machine::Simulation;
using platform::kNoLimit;
using platform::ThreadStart;
using platform::WaitResult;
using ThreadList = std::vector<std::unique_ptr<platform::Thread>>;

TEST(SimulationOrder, StartedThreadsRunInTheOrderOfTheirStartOnceTheHostWaits) {
  Simulation simulation;
  std::string log;
  ThreadList threads;
  for (const char name : {'a', 'b', 'c'}) {
    threads.push_back(
        simulation.Start([&log, name] { log += name; }, ThreadStart::kRunning).value());
  }
  log += '-';
  simulation.Sleep(0);
  EXPECT_EQ(log, "-abc");
}

TEST(SimulationOrder, SleepersWakeByTimeAndThenByArrival) {
  Simulation simulation;
  std::string log;
  ThreadList threads;
  const auto start = [&](char name, std::uint32_t first, std::uint32_t second) {
    threads.push_back(simulation
                          .Start(
                              [&, name, first, second] {
                                simulation.Sleep(first);
                                simulation.Sleep(second);
                                log += name;
                              },
                              ThreadStart::kRunning)
                          .value());
  };
  start('a', 10, 20);
  start('b', 20, 10);
  start('c', 5, 25);
  start('d', 0, 29);
  threads.clear();
  // All but d wake at 30; c went to that sleep at 5, a at 10, b at 20.
  EXPECT_EQ(log, "dcab");
}

TEST(SimulationOrder, WaitersPassInTheOrderOfTheirArrival) {
  Simulation simulation;
  const auto event = simulation.CreateManualResetEvent().value();
  std::string log;
  ThreadList threads;
  for (const char name : {'c', 'a', 'b'}) {
    threads.push_back(simulation
                          .Start(
                              [&, name] {
                                if (event->Wait(kNoLimit) == WaitResult::kSignalled) {
                                  log += name;
                                }
                              },
                              ThreadStart::kRunning)
                          .value());
  }
  simulation.Sleep(1);
  event->Set();
  log += '-';
  threads.clear();
  EXPECT_EQ(log, "-cab");
}

TEST(SimulationOrder, ASetThatIsResetAtOnceReleasesWhoWaitedAndNobodyElse) {
  Simulation simulation;
  const auto event = simulation.CreateManualResetEvent().value();
  std::string log;
  const auto early =
      simulation
          .Start([&] { log += event->Wait(5) == WaitResult::kSignalled ? 'E' : 'e'; },
                 ThreadStart::kRunning)
          .value();
  simulation.Sleep(1);
  const auto late = simulation
                        .Start([&] { log += event->Wait(5) == WaitResult::kSignalled ? 'L' : 'l'; },
                               ThreadStart::kRunning)
                        .value();
  event->Set();
  event->Reset();
  simulation.Sleep(10);
  EXPECT_EQ(log, "El");
}

TEST(SimulationOrder, AResumedThreadQueuesAfterThoseThatAreReady) {
  Simulation simulation;
  std::string log;
  const auto suspended = simulation.Start([&] { log += 's'; }, ThreadStart::kSuspended).value();
  const auto first = simulation.Start([&] { log += 'f'; }, ThreadStart::kRunning).value();
  suspended->Resume();
  const auto last = simulation.Start([&] { log += 'l'; }, ThreadStart::kRunning).value();
  simulation.Sleep(0);
  EXPECT_EQ(log, "fsl");
}

/// One run of a small factory: five threads with sleeps of their own pass two events around.
std::string RunFactory() {
  Simulation simulation;
  const auto go = simulation.CreateManualResetEvent().value();
  const auto done = simulation.CreateManualResetEvent().value();
  std::string log;
  ThreadList threads;
  for (std::uint32_t t = 0; t < 5; ++t) {
    threads.push_back(
        simulation
            .Start(
                [&, t] {
                  std::uint32_t number = t + 1;
                  for (int i = 0; i < 10; ++i) {
                    number = number * 1103515245U + 12345U;
                    switch ((number >> 16) % 4) {
                      case 0:
                        simulation.Sleep((number >> 20) % 4);
                        break;
                      case 1:
                        go->Set();
                        break;
                      case 2:
                        log += go->Wait((number >> 20) % 3) == WaitResult::kSignalled ? '+' : '-';
                        go->Reset();
                        break;
                      default:
                        log += static_cast<char>('0' + simulation.GetTickCount() % 10);
                    }
                    log += static_cast<char>('a' + t);
                  }
                  done->Set();
                },
                ThreadStart::kRunning)
            .value());
  }
  log += done->Wait(kNoLimit) == WaitResult::kSignalled ? '!' : '?';
  threads.clear();
  return log;
}

TEST(SimulationOrder, EveryRunIsTheSame) {
  const std::string first = RunFactory();
  EXPECT_GT(first.size(), 50U);
  for (int i = 1; i < 200; ++i) {
    ASSERT_EQ(RunFactory(), first) << i;
  }
}

}  // namespace
