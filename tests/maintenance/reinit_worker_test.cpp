#include "maintenance/reinit_threads.h"

#include "tests/maintenance/reinit_fixture.h"
#include "tests/support/watched_file_system.h"

namespace {

using platform::MessageCaption;
using platform::MessageStyle;

class ReinitWorkerTest : public ReinitFixture {};

TEST_F(ReinitWorkerTest, ComputesEveryTemplateAnew) {
  PutTags(3);
  EXPECT_EQ(Reinitialize(), 0);
  EXPECT_TRUE(m_wasEndedByItself);
  for (const std::uint32_t i : {1U, 2U, 3U}) {
    const std::u16string name = language::Decimal(static_cast<int>(i));
    EXPECT_EQ(GetTemplate(name), Expected(i));
    EXPECT_EQ(GetFile(storage::WavePath(name)), m_expectedWave) << "Trimmed once more.";
  }
  EXPECT_TRUE(GetMessages().empty());
  EXPECT_EQ(m_machine.files.CountOpenHandles(), 0U);
}

/// A dialog that counts how it is ended.
class EndedProgress final : public maintenance::ReinitProgress {
 public:
  explicit EndedProgress(platform::Threads& threads)
      : m_done(threads.CreateManualResetEvent().value()) {}
  void Step() override {}
  platform::Event& GetDoneEvent() override { return *m_done; }
  [[nodiscard]] bool IsGone() const override { return false; }
  void LetUserClose() override { ++letsClose; }
  void End() override { ++ends; }
  int letsClose = 0;
  int ends = 0;

 private:
  const std::unique_ptr<platform::Event> m_done;
};

/// Notes at what time it was set.
class NotedEvent final : public platform::Event {
 public:
  NotedEvent(machine::Simulation& simulation, std::vector<std::uint64_t>& sets)
      : m_simulation(simulation), m_sets(sets) {}
  void Set() override { m_sets.push_back(m_simulation.GetElapsed()); }
  void Reset() override {}
  [[nodiscard]] platform::WaitResult Wait(std::uint32_t /*milliseconds*/) override {
    return platform::WaitResult::kSignalled;
  }

 private:
  machine::Simulation& m_simulation;
  std::vector<std::uint64_t>& m_sets;
};

TEST_F(ReinitWorkerTest, SetsItsEventAfterEachRecordingAndOnceMoreAndWaitsForTheBarForTenSeconds) {
  PutTags(3);
  std::vector<std::uint64_t> sets;
  m_session.workerEvent = std::make_unique<NotedEvent>(m_machine.simulation, sets);
  EndedProgress progress(m_machine.simulation);
  maintenance::ReinitWorker(m_machine.Get(), m_texts, m_session, progress).Run();
  EXPECT_EQ(sets, (std::vector<std::uint64_t>{300, 600, 900, 900}));
  EXPECT_EQ(m_machine.simulation.GetElapsed(), 10'900U) << "Nobody says that the bar is done.";
  EXPECT_EQ(progress.ends, 1);
}

TEST_F(ReinitWorkerTest, AfterATemplateThatCannotBeMadeItsEventIsNotSetAndTheDialogStays) {
  PutTags(3);
  const auto held = m_machine.files.Open(storage::TemplatePath(u"2"), {});
  ASSERT_TRUE(held);
  std::vector<std::uint64_t> sets;
  m_session.workerEvent = std::make_unique<NotedEvent>(m_machine.simulation, sets);
  EndedProgress progress(m_machine.simulation);
  maintenance::ReinitWorker(m_machine.Get(), m_texts, m_session, progress).Run();
  EXPECT_EQ(sets, std::vector<std::uint64_t>{300}) << "Of the recording before.";
  EXPECT_EQ(m_machine.simulation.GetElapsed(), 600U) << "Nobody waits for the bar.";
  EXPECT_EQ(progress.letsClose, 1);
  EXPECT_EQ(progress.ends, 0);
}

TEST_F(ReinitWorkerTest, WithoutTagsEndsTheDialogAndTouchesNothing) {
  PutRecording(u"900", 9);
  const auto recording = GetFile(storage::WavePath(u"900"));
  EndedProgress progress(m_machine.simulation);
  maintenance::ReinitWorker(m_machine.Get(), m_texts, m_session, progress).Run();
  EXPECT_EQ(progress.ends, 1);
  EXPECT_EQ(m_machine.simulation.GetElapsed(), 0U);
  EXPECT_TRUE(GetTemplate(u"900").empty());
  EXPECT_EQ(GetFile(storage::WavePath(u"900")), recording);
}

TEST_F(ReinitWorkerTest, LeavesTheMathematicsOfThePageAlone) {
  PutTags(2);
  m_session.mathematics.m_wavePath = u"untouched";
  Reinitialize();
  EXPECT_EQ(m_session.mathematics.m_wavePath, u"untouched");
  EXPECT_EQ(m_session.mathematics.m_count, 0);
  EXPECT_TRUE(m_session.mathematics.GetTemplate(0).empty());
}

TEST_F(ReinitWorkerTest, RecordingsWithoutATagGetTheirTemplateToo) {
  PutTags(1);
  PutRecording(u"900", 9);
  EXPECT_EQ(Reinitialize(), 0);
  EXPECT_EQ(GetTemplate(u"900"), Expected(9));
}

TEST_F(ReinitWorkerTest, ALongerOldTemplateLeavesNoEnd) {
  PutTags(1);
  ASSERT_TRUE(m_machine.files.PutFile(storage::TemplatePath(u"1"), support::Bytes(100'000)));
  Reinitialize();
  EXPECT_EQ(GetTemplate(u"1"), Expected(1)) << "It was deleted first.";
}

TEST_F(ReinitWorkerTest, AnOldTemplateThatIsMissingIsNoFault) {
  PutTags(1);
  ASSERT_TRUE(m_machine.files.Delete(storage::TemplatePath(u"1")));
  EXPECT_EQ(Reinitialize(), 0);
  EXPECT_EQ(GetTemplate(u"1"), Expected(1));
  EXPECT_TRUE(GetMessages().empty());
}

TEST_F(ReinitWorkerTest, TagsWithoutAnyRecordingEndTheProcess) {
  m_session.AddTag(u"1", u"Ann");
  EXPECT_EQ(Reinitialize(), 0) << "Where only the applet ends, the dialog goes with it.";
  EXPECT_TRUE(m_wasEndedByItself);
  EXPECT_EQ(m_machine.process.GetExitCode(), 0);
  const auto shown = m_machine.ui.GetMessages();
  ASSERT_EQ(shown.size(), 1U);
  EXPECT_EQ(shown[0].box.text, u"Error");
  EXPECT_EQ(shown[0].caption, u"Zedra Voxtrel");
  EXPECT_EQ(shown[0].box.style, MessageStyle::kTopmost);
  EXPECT_EQ(m_bar->position, 1) << "The first step is made before the work.";
  EXPECT_EQ(m_machine.simulation.GetElapsed(), 1000U);
}

TEST_F(ReinitWorkerTest, ASearchThatFailsAtOnceEndsTheProcessAndChangesNothing) {
  PutTags(1);
  const auto before = GetTemplate(u"1");
  support::WatchedFileSystem failing(m_machine.files);
  failing.FailCall(1, support::Failing::kOnce);
  EXPECT_EQ(ReinitializeOn(m_machine.GetWith(failing, m_machine.registry)), 0);
  EXPECT_EQ(GetMessages(), Texts{u"Error"});
  EXPECT_EQ(m_machine.process.GetExitCode(), 0);
  EXPECT_EQ(GetTemplate(u"1"), before);
  EXPECT_EQ(failing.CountCalls(), 1U) << "Nothing was touched any more.";
}

/// Lets the search for the next file fail once.
class HalfSearch final : public support::WatchedFileSystem {
 public:
  using WatchedFileSystem::WatchedFileSystem;

  platform::Result<std::unique_ptr<platform::FileSearch>, platform::FileError> Find(
      std::u16string_view pattern) override {
    auto started = WatchedFileSystem::Find(pattern);
    if (started) {
      started = std::make_unique<Search>(std::move(*started));
    }
    return started;
  }

 private:
  class Search final : public platform::FileSearch {
   public:
    explicit Search(std::unique_ptr<platform::FileSearch> search) : m_search(std::move(search)) {}
    platform::Result<std::optional<platform::FoundFile>, platform::FileError> Next() override {
      return m_calls++ == 2 ? platform::Failure(platform::FileError::kOther) : m_search->Next();
    }

   private:
    std::unique_ptr<platform::FileSearch> m_search;
    int m_calls = 0;
  };
};

TEST_F(ReinitWorkerTest, ASearchThatFailsHalfWayIsToldAndGoesOn) {
  PutTags(3);
  HalfSearch files(m_machine.files);
  EXPECT_EQ(ReinitializeOn(m_machine.GetWith(files, m_machine.registry)), 0);
  const auto shown = m_machine.ui.GetMessages();
  ASSERT_EQ(shown.size(), 1U);
  EXPECT_EQ(shown[0].box.text, u"ERROR in FindNextFile");
  EXPECT_EQ(shown[0].box.captionKind, MessageCaption::kNone);
  EXPECT_EQ(shown[0].box.style, MessageStyle::kOk);
  EXPECT_EQ(GetTemplate(u"3"), Expected(3));
  EXPECT_EQ(m_machine.process.GetExitCode(), std::nullopt);
}

TEST_F(ReinitWorkerTest, WithALanguageFileTheSameFailureIsABoxOfTheApplication) {
  LoadLanguage(u"ID_S_MESSAGE_1 Suche gescheitert.\r\n");
  PutTags(2);
  HalfSearch files(m_machine.files);
  ReinitializeOn(m_machine.GetWith(files, m_machine.registry));
  const auto shown = m_machine.ui.GetMessages();
  ASSERT_EQ(shown.size(), 1U);
  EXPECT_EQ(shown[0].box.text, u"Suche gescheitert.");
  EXPECT_EQ(shown[0].box.captionKind, MessageCaption::kApplication);
}

TEST_F(ReinitWorkerTest, AnUnreadableRecordingInTheMiddleGetsNoTemplateAndNoOtherOnes) {
  PutTags(3);
  ASSERT_TRUE(m_machine.files.PutFile(storage::WavePath(u"2"), support::Bytes(500)));
  EXPECT_EQ(Reinitialize(), 0);
  EXPECT_EQ(GetMessages(), (Texts{u"Can't process this file", u"Can't process this file"}))
      << "Of either attempt.";
  EXPECT_EQ(GetTemplate(u"1"), Expected(1));
  EXPECT_FALSE(m_machine.files.GetFile(storage::TemplatePath(u"2")).has_value());
  EXPECT_EQ(GetTemplate(u"3"), Expected(3));
  EXPECT_EQ(m_bar->position, 3);
}

TEST_F(ReinitWorkerTest, ATemplateThatCannotBeMadeStopsTheRunAndTheUserCanClose) {
  PutTags(3);
  // Held open by the dialer: neither deleted nor opened.
  const auto held = m_machine.files.Open(storage::TemplatePath(u"2"), {});
  ASSERT_TRUE(held);
  const auto third = GetTemplate(u"3");
  EXPECT_EQ(Reinitialize(), 2) << "Closed by the user.";
  EXPECT_FALSE(m_wasEndedByItself) << "Nothing else ends it.";
  const auto shown = m_machine.ui.GetMessages();
  ASSERT_EQ(shown.size(), 1U);
  EXPECT_EQ(shown[0].box.text,
            u"ERROR in CreateFile\n\nTag 2\n\nThe templates of this voice tag and of those after "
            u"it were not made again. There is no room on the device, another program has the file "
            u"open, or the folder Voxtrel_stor is missing. Make room or close that program, close "
            u"this window, and run this command: voxtrel reinit --force. If the folder is missing, "
            u"make it first: voxtrel check --repair");
  EXPECT_EQ(shown[0].box.captionKind, MessageCaption::kApplication);
  EXPECT_EQ(GetTemplate(u"1"), Expected(1));
  EXPECT_EQ(GetTemplate(u"3"), third) << "The rest is not processed.";
  EXPECT_EQ(m_machine.process.GetExitCode(), std::nullopt);
}

TEST_F(ReinitWorkerTest, TheFailureOfARecordingWithoutATagNamesTheRecording) {
  LoadLanguage(u"ID_S_MESSAGE_7 Datei!\r\n");
  PutTags(1);
  PutRecording(u"0", 5);
  ASSERT_TRUE(m_machine.files.PutFile(storage::TemplatePath(u"0"), {}));
  const auto held = m_machine.files.Open(storage::TemplatePath(u"0"), {});
  Reinitialize();
  ASSERT_EQ(GetMessages().size(), 1U);
  EXPECT_TRUE(GetMessages()[0].starts_with(u"Datei!\n\n0\n\n"));
}

TEST_F(ReinitWorkerTest, TheFailureOfATagWithoutATextNamesItByItsNameHoweverManyTagsThereAre) {
  m_session.AddTag(u"7", u"");
  m_session.tags.tagCount = 250;
  for (const std::u16string_view recording : {u"7", u"8"}) {
    PutRecording(recording, 5);
    ASSERT_TRUE(m_machine.files.PutFile(storage::TemplatePath(recording), {}));
    const auto held = m_machine.files.Open(storage::TemplatePath(recording), {});
    EXPECT_EQ(Reinitialize(), 2);
    EXPECT_TRUE(GetMessages().back().starts_with(u"ERROR in CreateFile\n\n" +
                                                 std::u16string(recording) + u"\n\n"));
    ASSERT_TRUE(m_machine.files.Delete(storage::WavePath(recording)));
  }
}

TEST_F(ReinitWorkerTest, AFullDiskLeavesNoHalfTemplate) {
  PutTags(2);
  m_machine.files.SetCapacity(0);
  EXPECT_EQ(Reinitialize(), 2);
  for (const std::u16string_view name : {u"1", u"2"}) {
    const auto content = m_machine.files.GetFile(storage::TemplatePath(name));
    EXPECT_TRUE(!content || content->size() == 26U) << "None, or the old one.";
  }
}

}  // namespace
