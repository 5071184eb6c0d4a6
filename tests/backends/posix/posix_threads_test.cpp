#include "backends/posix/posix_threads.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <vector>

#include "tests/support/results.h"
#include "tests/support/temp_folder.h"

namespace {

using platform::kNoLimit;
using platform::ThreadStart;
using platform::WaitResult;

TEST(PosixThreads, AThreadMayGiveUpItsOwnHandle) {
  posix::PosixThreads threads;
  const auto done = threads.CreateManualResetEvent().value();
  std::unique_ptr<platform::Thread> handle;
  const auto owner = std::make_shared<std::atomic<bool>>(false);
  handle = threads
               .Start(
                   [&, owner] {
                     handle.reset();
                     *owner = true;
                     done->Set();
                   },
                   ThreadStart::kSuspended)
               .value();
  handle->Resume();
  EXPECT_EQ(done->Wait(kNoLimit), WaitResult::kSignalled);
  EXPECT_TRUE(*owner);
}

TEST(PosixThreads, ReportEachNamedMutexThatIsTakenOrRefused) {
  const support::TempFolder folder;
  std::vector<bool> taken;
  posix::PosixThreads threads(folder.Path(), [&](const platform::CreatedMutex& created) {
    EXPECT_NE(created, platform::Failure(platform::ThreadError::kRefused));
    taken.push_back(created.has_value());
  });
  const platform::CreatedMutex held = threads.CreateNamedMutex(u"name");
  EXPECT_TRUE(held);
  EXPECT_EQ(support::ErrorOf(threads.CreateNamedMutex(u"name")), platform::ThreadError::kHeld);
  EXPECT_EQ(taken, (std::vector<bool>{true, false}));
}

TEST(PosixThreads, ThreadsRunSideBySide) {
  posix::PosixThreads threads;
  const auto first = threads.CreateManualResetEvent().value();
  const auto second = threads.CreateManualResetEvent().value();
  std::atomic<int> met = 0;
  const auto a = threads
                     .Start(
                         [&] {
                           first->Set();
                           met += second->Wait(kNoLimit) == WaitResult::kSignalled ? 1 : 0;
                         },
                         ThreadStart::kRunning)
                     .value();
  const auto b = threads
                     .Start(
                         [&] {
                           second->Set();
                           met += first->Wait(kNoLimit) == WaitResult::kSignalled ? 1 : 0;
                         },
                         ThreadStart::kRunning)
                     .value();
  ASSERT_EQ(a->Wait(kNoLimit), WaitResult::kSignalled);
  ASSERT_EQ(b->Wait(kNoLimit), WaitResult::kSignalled);
  EXPECT_EQ(met, 2);
}

TEST(PosixThreads, AWaitOutlivesOthersThatResetTheEvent) {
  posix::PosixThreads threads;
  const auto event = threads.CreateManualResetEvent().value();
  std::atomic<int> passed = 0;
  std::vector<std::unique_ptr<platform::Thread>> waiters;
  for (int i = 0; i < 4; ++i) {
    waiters.push_back(threads
                          .Start(
                              [&] {
                                passed += event->Wait(kNoLimit) == WaitResult::kSignalled ? 1 : 0;
                                event->Set();
                              },
                              ThreadStart::kRunning)
                          .value());
  }
  event->Set();
  waiters.clear();
  EXPECT_EQ(passed, 4);
}

TEST(NamedMutexFile, ShowsWhetherTheMutexWasEverMadeAndMakesNothing) {
  const support::TempFolder folder;
  const std::string root = folder.Path().native();
  EXPECT_FALSE(posix::PosixThreads::WasNamedMutexMade(root, u"ZedraD"));
  EXPECT_FALSE(posix::PosixThreads::WasNamedMutexMade(root, u"ZedraD"));
  posix::PosixThreads threads(root);
  auto created = threads.CreateNamedMutex(u"ZedraD");
  EXPECT_TRUE(posix::PosixThreads::WasNamedMutexMade(root, u"ZedraD"));
  EXPECT_FALSE(posix::PosixThreads::WasNamedMutexMade(root, u"Other"));
  created->reset();
  EXPECT_TRUE(posix::PosixThreads::WasNamedMutexMade(root, u"ZedraD")) << "Though it is free.";
  EXPECT_TRUE(posix::PosixThreads::WasNamedMutexMade(std::string(5000, 'x'), u"ZedraD"))
      << "Nobody can know.";
}

}  // namespace
