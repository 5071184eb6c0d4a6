#include "backends/vcard/contact_source.h"

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

using platform::BooksError;

/// Reads as a test says.
class ScriptedSource final : public ContactSource {
 public:
  explicit ScriptedSource(std::function<ReadBooks()> read) : m_read(std::move(read)) {}

  ReadBooks Read(RemarkList& remarks) override {
    remarks.Add({u"eds:book", 0, "it was asked for"});
    return m_read();
  }

 private:
  const std::function<ReadBooks()> m_read;
};

ReadBooks ReadOneBook() {
  return std::vector<Book>{{u"eds:book", std::vector<ContactData>(3), true}};
}

TEST(BackgroundSource, GivesWhatTheInnerSourceRead) {
  posix::PosixThreads threads;
  ScriptedSource inner(ReadOneBook);
  RemarkList remarks;
  const ReadBooks books = BackgroundSource(inner, threads).Read(remarks);
  ASSERT_TRUE(books);
  ASSERT_EQ(books->size(), 1U);
  EXPECT_EQ(books->front().name, u"eds:book");
  EXPECT_EQ(books->front().contacts.size(), 3U);
  EXPECT_TRUE(books->front().isComplete);
  EXPECT_EQ(remarks.GetAll(), (std::vector<Remark>{{u"eds:book", 0, "it was asked for"}}));
}

TEST(BackgroundSource, GivesTheFailureOfTheInnerSourceAndItsReason) {
  posix::PosixThreads threads;
  for (const BooksError::Kind kind : {BooksError::Kind::kNoAnswer, BooksError::Kind::kUnreadable}) {
    ScriptedSource inner([kind] { return platform::Failure(BooksError{kind, "asked for"}); });
    RemarkList remarks;
    const ReadBooks books = BackgroundSource(inner, threads).Read(remarks);
    ASSERT_FALSE(books);
    EXPECT_EQ(books.error().kind, kind);
    EXPECT_EQ(books.error().reason, "asked for");
  }
}

TEST(BackgroundSource, ReadsOnAnotherThread) {
  posix::PosixThreads threads;
  std::thread::id reader;
  ScriptedSource inner([&reader] {
    reader = std::this_thread::get_id();
    return ReadOneBook();
  });
  RemarkList remarks;
  ASSERT_TRUE(BackgroundSource(inner, threads).Read(remarks));
  EXPECT_NE(reader, std::thread::id());
  EXPECT_NE(reader, std::this_thread::get_id());
}

/// The simulation gives another thread its turn only if this one waits through it, and lets time
/// pass only if all of them wait: any other way to wait would hang.
TEST(BackgroundSource, WaitsForASlowServerAsTheThreadsHaveIt) {
  machine::Simulation simulation;
  ScriptedSource inner([&simulation] {
    simulation.Sleep(20'000);
    return ReadOneBook();
  });
  RemarkList remarks;
  const ReadBooks books = BackgroundSource(inner, simulation).Read(remarks);
  EXPECT_EQ(simulation.GetElapsed(), 20'000U);
  ASSERT_TRUE(books);
  EXPECT_EQ(books->size(), 1U);
}

TEST(BackgroundSource, AReadingThatThrowsIsUnreadableAndEndsNothing) {
  posix::PosixThreads threads;
  const auto reasonOf = [&threads](const std::function<ReadBooks()>& read) {
    ScriptedSource inner(read);
    RemarkList remarks;
    const ReadBooks books = BackgroundSource(inner, threads).Read(remarks);
    EXPECT_FALSE(books);
    EXPECT_EQ(books.error().kind, BooksError::Kind::kUnreadable);
    EXPECT_TRUE(remarks.GetAll().empty());
    return books.error().reason;
  };
  EXPECT_EQ(reasonOf([]() -> ReadBooks { throw std::bad_alloc(); }), std::bad_alloc().what());
  EXPECT_EQ(reasonOf([]() -> ReadBooks { throw std::runtime_error("torn"); }), "torn");
}

TEST(BackgroundSource, WithoutAThreadTheCallersOwnReads) {
  posix::PosixThreads threads;
  support::FaultPlan plan;
  support::WatchedThreads failing(threads, plan);
  plan.FailCall(1, support::Failing::kOnce);
  ScriptedSource inner(ReadOneBook);
  RemarkList remarks;
  const ReadBooks books = BackgroundSource(inner, failing).Read(remarks);
  EXPECT_TRUE(plan.HasFailed());
  ASSERT_TRUE(books);
  EXPECT_EQ(books->size(), 1U);
}

TEST(BackgroundSource, AWaitThatFailsLosesNothing) {
  posix::PosixThreads threads;
  support::FaultPlan plan;
  support::WatchedThreads failing(threads, plan);
  plan.FailCall(2, support::Failing::kOnce);
  ScriptedSource inner(ReadOneBook);
  RemarkList remarks;
  const ReadBooks books = BackgroundSource(inner, failing).Read(remarks);
  EXPECT_TRUE(plan.HasFailed());
  ASSERT_TRUE(books);
  EXPECT_EQ(books->size(), 1U);
}

}  // namespace
}  // namespace vcard
