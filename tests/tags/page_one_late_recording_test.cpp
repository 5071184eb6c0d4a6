#include "tests/tags/page_fixture.h"
#include "tests/tags/slow_wave_in.h"

namespace {

using Texts = std::vector<std::u16string>;
using namespace resources;

/// The page with a sound service that hangs.
class PageOneLateRecording : public PageFixture {
 protected:
  [[nodiscard]] platform::Platform GetSlowPlatform() {
    return {m_machine.files,   m_slow,         m_machine.simulation, m_machine.simulation,
            m_machine.process, m_machine.ui,   m_machine.registry,   m_machine.contacts,
            m_machine.waveOut, m_machine.shell};
  }
  [[nodiscard]] std::uint64_t PlayingTime(std::u16string_view tag) {
    return m_machine.files.GetFile(storage::WavePath(tag))->size() / 11025 * 1000 + 300;
  }
  // What the page refers to goes before the page's own fixture does.
  ~PageOneLateRecording() override {
    m_dialog.reset();
    m_page.reset();
  }

  SlowWaveIn m_slow{m_machine.waveIn, m_machine.simulation};
};

TEST_F(PageOneLateRecording, GoesOnAfterTenSecondsWithWhatTheFileHolds) {
  auto& dialog = OpenOn(GetSlowPlatform());
  // The recording is in the file; only the device does not come back.
  m_slow.Delay(SlowWaveIn::Call::kReset, 120'000);
  const std::uint64_t before = m_machine.simulation.GetElapsed();
  dialog.Press(kRecordButtonId);
  EXPECT_EQ(m_machine.simulation.GetElapsed() - before, 150 + 3000 + 10'000 + PlayingTime(u"1000"));
  EXPECT_TRUE(GetMessages().empty());
  EXPECT_EQ(GetEntries(), Texts{u"1000"});
  EXPECT_EQ(dialog.GetItems(kTagListId), Texts{u"Ann Lee 1110000 H"});
  EXPECT_EQ(m_page->GetPlayCode(), audio::kPlayed);
  EXPECT_EQ(m_machine.waveIn.OpenDevices(), 1U) << "The worker still has its own.";
  EXPECT_FALSE(dialog.GetProgress(kProgressBarId));
}

TEST_F(PageOneLateRecording, WaitsTenSecondsForItsEnd) {
  auto& dialog = OpenOn(GetSlowPlatform());
  m_slow.Delay(SlowWaveIn::Call::kReset, 9'999);
  const std::uint64_t before = m_machine.simulation.GetElapsed();
  dialog.Press(kRecordButtonId);
  EXPECT_EQ(m_machine.simulation.GetElapsed() - before, 150 + 3000 + 9'999 + PlayingTime(u"1000"));
  EXPECT_EQ(m_machine.waveIn.OpenDevices(), 0U);
}

TEST_F(PageOneLateRecording, IsNoTagWhileTheFileIsNotWritten) {
  auto& dialog = OpenOn(GetSlowPlatform());
  m_slow.Delay(SlowWaveIn::Call::kStart, 60'000);
  const std::uint64_t before = m_machine.simulation.GetElapsed();
  dialog.Press(kRecordButtonId);
  EXPECT_EQ(m_machine.simulation.GetElapsed() - before, 150 + 3000 + 10'000);
  EXPECT_EQ(GetMessages().size(), 1U) << "The recording cannot be read yet.";
  EXPECT_TRUE(GetEntries().empty());
  EXPECT_EQ(m_page->GetTags().tagCount, 0);
  EXPECT_EQ(m_machine.process.GetExitCode(), std::nullopt);
}

TEST_F(PageOneLateRecording, DoesNotHinderTheNextOne) {
  auto& dialog = OpenOn(GetSlowPlatform());
  m_slow.Delay(SlowWaveIn::Call::kStart, 60'000);
  dialog.Press(kRecordButtonId);
  m_slow.Delay(SlowWaveIn::Call::kStart, 0);
  dialog.Press(kRecordButtonId);
  EXPECT_EQ(GetEntries(), Texts{u"14150"});
  EXPECT_EQ(dialog.GetItemCount(kTagListId), 1);
  EXPECT_EQ(m_page->GetPlayCode(), audio::kPlayed);
  EXPECT_EQ(m_machine.waveIn.OpenDevices(), 1U);
}

TEST_F(PageOneLateRecording, IsWaitedForAtTheEndOfThePage) {
  auto& dialog = OpenOn(GetSlowPlatform());
  m_slow.Delay(SlowWaveIn::Call::kReset, 15'000);
  dialog.Press(kRecordButtonId);
  m_dialog.reset();
  m_page.reset();
  EXPECT_EQ(m_machine.waveIn.OpenDevices(), 0U);
  EXPECT_EQ(m_machine.process.GetExitCode(), std::nullopt);
}

TEST_F(PageOneLateRecording, ThatHangsEndsTheProcessWithThePage) {
  auto& dialog = OpenOn(GetSlowPlatform());
  m_slow.Delay(SlowWaveIn::Call::kReset, 120'000);
  dialog.Press(kRecordButtonId);
  EXPECT_EQ(m_machine.process.GetExitCode(), std::nullopt);
  m_dialog.reset();
  m_page.reset();
  EXPECT_EQ(m_machine.process.GetExitCode(), 0);
  EXPECT_EQ(m_machine.waveIn.OpenDevices(), 0U) << "A host that goes on is left with nothing.";
}

TEST_F(PageOneLateRecording, LeavesTheTagsToAnotherPageAtOnce) {
  auto& dialog = OpenOn(GetSlowPlatform());
  m_slow.Delay(SlowWaveIn::Call::kReset, 120'000);
  dialog.Press(kRecordButtonId);
  const std::uint64_t closed = m_machine.simulation.GetElapsed();
  bool wasFree = false;
  const auto watcher =
      m_machine.simulation
          .Start(
              [&] {
                wasFree = m_machine.simulation.CreateNamedMutex(tags::kInstanceMutex).has_value() &&
                          m_machine.simulation.GetElapsed() == closed;
              },
              platform::ThreadStart::kRunning)
          .value();
  m_dialog.reset();
  m_page.reset();
  EXPECT_TRUE(wasFree);
}

TEST_F(PageOneLateRecording, ThatFailsAfterAllEndsTheProcess) {
  auto& dialog = OpenOn(GetSlowPlatform());
  m_slow.Delay(SlowWaveIn::Call::kStart, 20'000);
  m_machine.waveIn.SetScript({.start = platform::WaveResult::kFailed});
  dialog.Press(kRecordButtonId);
  EXPECT_EQ(m_machine.process.GetExitCode(), std::nullopt);
  m_machine.simulation.Sleep(10'000);
  EXPECT_EQ(GetMessages().back(), u"5");
  EXPECT_EQ(m_machine.process.GetExitCode(), 0);
}

}  // namespace
