#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "tests/contract/file_backends.h"
#include "tests/support/file_bytes.h"
#include "tests/support/results.h"

namespace contract {
namespace {

using platform::FileError;

class FilesOfThreads : public FileContract {};

TEST_P(FilesOfThreads, EachThreadWorksOnItsOwnFiles) {
  constexpr int kThreads = 4;
  constexpr int kRounds = 20;
  std::atomic<int> failures = 0;
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([this, t, &failures] {
      const std::u16string name = Path(std::u16string(1, static_cast<char16_t>(u'a' + t)));
      for (int i = 0; i < kRounds; ++i) {
        const std::string content(static_cast<std::size_t>(i * 100), static_cast<char>('a' + t));
        const bool works = support::WriteWhole(Files(), name, content) &&
                           support::ReadWhole(Files(), name) == content && Files().Find(name) &&
                           Files().Delete(name);
        failures += works ? 0 : 1;
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(failures, 0);
}

TEST_P(FilesOfThreads, OnlyOneThreadAtATimeHoldsAFileAlone) {
  constexpr int kThreads = 4;
  constexpr int kRounds = 200;
  std::atomic<int> holders = 0;
  std::atomic<int> overlaps = 0;
  std::atomic<int> failures = 0;
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, this] {
      for (int i = 0; i < kRounds; ++i) {
        const auto opened = Files().Open(Path(u"f"), kReadWrite);
        if (opened) {
          overlaps += holders.fetch_add(1) == 0 ? 0 : 1;
          --holders;
        } else if (support::ErrorOf(opened) != FileError::kSharingViolation) {
          ++failures;
        }
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(overlaps, 0);
  EXPECT_EQ(failures, 0);
}

INSTANTIATE_TEST_SUITE_P(EachBackend, FilesOfThreads, testing::ValuesIn(AllFileBackends()),
                         BackendName);

}  // namespace
}  // namespace contract
