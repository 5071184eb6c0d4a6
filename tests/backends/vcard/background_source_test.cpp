#include "backends/vcard/background_source.h"

#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "backends/posix/posix_threads.h"
#include "tests/machine/simulation.h"
#include "tests/support/watched_threads.h"

namespace vcard {
namespace {

/// Reads as a test says.
class ScriptedSource final : public ContactSource {
 public:
  explicit ScriptedSource(std::function<ReadResult(std::vector<Book>&)> read)
      : m_read(std::move(read)) {}

  ReadResult Read(std::vector<Book>& books) override { return m_read(books); }
  std::string GetReason() const override { return "asked for"; }

 private:
  const std::function<ReadResult(std::vector<Book>&)> m_read;
};

ReadResult ReadOneBook(std::vector<Book>& books) {
  books = {{u"eds:book", std::vector<ContactData>(3), true}};
  return ReadResult::kRead;
}

ReadResult RunOutOfMemory(std::vector<Book>& books) {
  books.resize(2);
  throw std::bad_alloc();
}

TEST(BackgroundSource, GivesWhatTheInnerSourceRead) {
  posix::PosixThreads threads;
  ScriptedSource inner(ReadOneBook);
  std::vector<Book> books;
  EXPECT_EQ(BackgroundSource(inner, threads).Read(books), ReadResult::kRead);
  ASSERT_EQ(books.size(), 1U);
  EXPECT_EQ(books[0].name, u"eds:book");
  EXPECT_EQ(books[0].contacts.size(), 3U);
  EXPECT_TRUE(books[0].isComplete);
}

TEST(BackgroundSource, GivesTheFailureOfTheInnerSourceAndItsReason) {
  posix::PosixThreads threads;
  for (const ReadResult failure : {ReadResult::kNoAnswer, ReadResult::kUnreadable}) {
    ScriptedSource inner([failure](std::vector<Book>&) { return failure; });
    BackgroundSource source(inner, threads);
    std::vector<Book> books;
    EXPECT_EQ(source.Read(books), failure);
    EXPECT_EQ(source.GetReason(), "asked for");
  }
}

TEST(BackgroundSource, ReadsOnAnotherThread) {
  posix::PosixThreads threads;
  std::thread::id reader;
  ScriptedSource inner([&reader](std::vector<Book>& books) {
    reader = std::this_thread::get_id();
    return ReadOneBook(books);
  });
  std::vector<Book> books;
  ASSERT_EQ(BackgroundSource(inner, threads).Read(books), ReadResult::kRead);
  EXPECT_NE(reader, std::thread::id());
  EXPECT_NE(reader, std::this_thread::get_id());
}

/// The simulation gives another thread its turn only where this one waits through it, and lets time
/// pass only where all of them wait: any other way to wait would hang.
TEST(BackgroundSource, WaitsForASlowServerAsTheThreadsHaveIt) {
  machine::Simulation simulation;
  ScriptedSource inner([&simulation](std::vector<Book>& books) {
    simulation.Sleep(20'000);
    return ReadOneBook(books);
  });
  std::vector<Book> books;
  EXPECT_EQ(BackgroundSource(inner, simulation).Read(books), ReadResult::kRead);
  EXPECT_EQ(simulation.GetElapsed(), 20'000U);
  EXPECT_EQ(books.size(), 1U);
}

TEST(BackgroundSource, AReadingThatThrowsIsUnreadableAndEndsNothing) {
  posix::PosixThreads threads;
  ScriptedSource poor(RunOutOfMemory);
  BackgroundSource poorSource(poor, threads);
  std::vector<Book> books;
  EXPECT_EQ(poorSource.Read(books), ReadResult::kUnreadable);
  EXPECT_TRUE(books.empty());
  EXPECT_EQ(poorSource.GetReason(), std::bad_alloc().what());

  ScriptedSource broken([](std::vector<Book>&) -> ReadResult { throw std::runtime_error("torn"); });
  BackgroundSource brokenSource(broken, threads);
  EXPECT_EQ(brokenSource.Read(books), ReadResult::kUnreadable);
  EXPECT_EQ(brokenSource.GetReason(), "torn");
}

TEST(BackgroundSource, WithoutAThreadTheCallersOwnReads) {
  posix::PosixThreads threads;
  support::FaultPlan plan;
  support::WatchedThreads failing(threads, plan);
  plan.FailCall(1, support::Failing::kOnce);
  ScriptedSource inner(ReadOneBook);
  std::vector<Book> books;
  EXPECT_EQ(BackgroundSource(inner, failing).Read(books), ReadResult::kRead);
  EXPECT_TRUE(plan.HasFailed());
  EXPECT_EQ(books.size(), 1U);
}

TEST(BackgroundSource, AWaitThatFailsLosesNothing) {
  posix::PosixThreads threads;
  support::FaultPlan plan;
  support::WatchedThreads failing(threads, plan);
  plan.FailCall(2, support::Failing::kOnce);
  ScriptedSource inner(ReadOneBook);
  std::vector<Book> books;
  EXPECT_EQ(BackgroundSource(inner, failing).Read(books), ReadResult::kRead);
  EXPECT_TRUE(plan.HasFailed());
  EXPECT_EQ(books.size(), 1U);
}

}  // namespace
}  // namespace vcard
