#include <gmock/gmock.h>

#include <atomic>

#include "backends/posix/posix_threads.h"
#include "tests/support/temp_folder.h"
#include "tests/tags/page_fixture.h"

namespace {

using namespace resources;

/// Time that passes by itself: nothing waits for it, so that the worker and the page meet at all
/// points of their ways.
class HastyClock final : public platform::Clock {
 public:
  [[nodiscard]] std::uint32_t GetTickCount() override { return m_now; }
  [[nodiscard]] std::int64_t GetUnixTime() override { return 0; }
  void Sleep(std::uint32_t milliseconds) override { m_now += milliseconds; }

 private:
  std::atomic<std::uint32_t> m_now = 1000;
};

/// Real threads, whose ends are never waited for where a wait has a limit.
class ImpatientThreads final : public platform::Threads {
 public:
  explicit ImpatientThreads(platform::Threads& inner) : m_inner(inner) {}

  [[nodiscard]] std::unique_ptr<platform::Thread> Start(std::function<void()> body,
                                                        platform::ThreadStart start) override {
    return std::make_unique<Thread>(m_inner.Start(std::move(body), start));
  }
  [[nodiscard]] std::unique_ptr<platform::Event> CreateManualResetEvent() override {
    return m_inner.CreateManualResetEvent();
  }
  [[nodiscard]] platform::CreatedMutex CreateNamedMutex(std::u16string_view name) override {
    return m_inner.CreateNamedMutex(name);
  }

 private:
  class Thread final : public platform::Thread {
   public:
    explicit Thread(std::unique_ptr<platform::Thread> inner) : m_inner(std::move(inner)) {}
    void Resume() override { m_inner->Resume(); }
    [[nodiscard]] platform::WaitResult Wait(std::uint32_t milliseconds) override {
      return m_inner->Wait(milliseconds == platform::kNoLimit ? milliseconds : 0);
    }

   private:
    const std::unique_ptr<platform::Thread> m_inner;
  };

  platform::Threads& m_inner;
};

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
  HastyClock m_clock;
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
  ImpatientThreads impatient(m_threads);
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
