#include <gmock/gmock.h>

#include "backends/posix/posix_threads.h"
#include "tests/support/temp_folder.h"
#include "tests/support/watched_clock.h"
#include "tests/support/watched_threads.h"
#include "tests/tags/page_fixture.h"

namespace {

using namespace resources;

/// The page with real threads, many times over; for the thread sanitizer.
class PageOneThreads : public PageFixture {
 protected:
  static constexpr int kTimes = 200;

  [[nodiscard]] platform::Platform GetThreadedPlatform() { return GetPlatformWith(m_threads); }
  [[nodiscard]] platform::Platform GetPlatformWith(platform::Threads& threads) {
    return {m_machine.files,
            m_machine.waveIn,
            m_clock,
            threads,
            m_machine.process,
            m_machine.ui,
            m_machine.registry,
            m_machine.contacts,
            m_machine.waveOut,
            m_machine.shell};
  }

  // Less than half a second arrives.
  void HearAShortWord() {
    m_machine.waveIn.SetScript(
        {.sound = support::BytesOf(
             support::Mixed(support::Noise(5000, 20, 1), 1200, support::SpeechLike(2600, 9000, 2))),
         .arrivals = {10000}});
  }

  ~PageOneThreads() override {
    m_dialog.reset();
    m_page.reset();
  }

  support::TempFolder m_folder;
  posix::PosixThreads m_threads{m_folder.Path().string()};
  support::WatchedClock m_clock;  ///< Time passes by itself: the worker and the page meet anywhere.
};

TEST_F(PageOneThreads, RecordsOverAndOver) {
  HearAShortWord();
  auto& dialog = OpenOn(GetThreadedPlatform());
  for (int i = 0; i < 90; ++i) {
    dialog.Press(kRecordButtonId);
  }
  EXPECT_TRUE(GetMessages().empty());
  EXPECT_EQ(GetEntries().size(), 90U);
  EXPECT_EQ(dialog.GetItemCount(kTagListId), 90);
}

TEST_F(PageOneThreads, TheWorkerMayBeLateAtAnyPoint) {
  HearAShortWord();
  support::WatchedThreads impatient(m_threads);
  impatient.ShortenWaits(0);
  for (int i = 0; i < kTimes / 4; ++i) {
    auto& dialog = OpenOn(GetPlatformWith(impatient));
    const int before = dialog.GetItemCount(kTagListId);
    dialog.Press(kRecordButtonId);
    dialog.Press(kRecordButtonId);
    EXPECT_EQ(static_cast<std::size_t>(dialog.GetItemCount(kTagListId)), GetEntries().size());
    EXPECT_GE(dialog.GetItemCount(kTagListId), before);
    m_dialog.reset();
    m_page.reset();
    EXPECT_EQ(m_machine.waveIn.OpenDevices(), 0U);
    EXPECT_EQ(m_machine.files.CountOpenHandles(), 0U);
  }
}

TEST_F(PageOneThreads, TheWorkersMessageAboutItsCodeEndsTheProcess) {
  m_machine.waveIn.SetScript({.start = platform::WaveResult::kFailed});
  for (int i = 0; i < kTimes; ++i) {
    OpenOn(GetThreadedPlatform()).Press(kRecordButtonId);
    EXPECT_FALSE(m_dialog->GetProgress(kProgressBarId));
  }
  EXPECT_EQ(m_machine.process.GetExitCode(), 0);
  EXPECT_EQ(GetMessages(), std::vector<std::u16string>(kTimes, u"5"));
  EXPECT_TRUE(GetEntries().empty());
}

TEST_F(PageOneThreads, AnAnswerToTheWorkersBoxMayCloseTheWindow) {
  m_machine.waveIn.SetScript({.deviceCount = 0});
  std::atomic<int> asked = 0;
  m_machine.ui.SetAnswerer([&](const platform::MessageBox&) {
    // What other threads may do to the window while a worker's box stands.
    ++asked;
    m_dialog->StepProgress(kProgressBarId);
    m_dialog->EndDialog(2);
    return platform::MessageAnswer::kOk;
  });
  for (int i = 0; i < kTimes; ++i) {
    OpenOn(GetThreadedPlatform()).Press(kRecordButtonId);
    EXPECT_EQ(m_dialog->GetResult(), 2);
  }
  EXPECT_EQ(asked, kTimes);
  EXPECT_EQ(m_machine.process.GetExitCode(), 0);
}

TEST_F(PageOneThreads, AFileThatCannotBeMadeGivesTwoBoxesOfTheWorker) {
  ASSERT_TRUE(m_machine.files.PutFile(storage::WavePath(u"other"), support::Bytes(1)));
  m_machine.files.SetCapacity(1);
  for (int i = 0; i < kTimes; ++i) {
    OpenOn(GetThreadedPlatform()).Press(kRecordButtonId);
  }
  const auto messages = GetMessages();
  ASSERT_EQ(messages.size(), 2U * kTimes);
  EXPECT_TRUE(messages[0].starts_with(u"File :"));
  EXPECT_EQ(messages[1], u"1");
}

}  // namespace
