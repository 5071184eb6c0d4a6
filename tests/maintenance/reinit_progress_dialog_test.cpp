#include "maintenance/reinit_progress_dialog.h"

#include "tests/maintenance/reinit_fixture.h"
#include "tests/support/watched_threads.h"

namespace {

using resources::kProgressBarId;
using resources::kReinitWaitLine1Id;
using resources::kReinitWaitLine2Id;

class ReinitProgressDialogTest : public ReinitFixture {};

TEST_F(ReinitProgressDialogTest, IsBuiltFromItsTable) {
  const auto& table = resources::kReinitDialog;
  EXPECT_EQ(table.id, 138);
  EXPECT_EQ(table.caption, u"Reinitialization");
  ASSERT_EQ(table.controls.size(), 2U);
  EXPECT_EQ(table.controls[0].id, 1023);
  EXPECT_EQ(table.controls[0].kind, resources::ControlKind::kCenteredStatic);
  EXPECT_EQ(table.controls[0].text, u"Please wait a few");
  EXPECT_EQ(table.controls[1].id, 1024);
  EXPECT_EQ(table.controls[1].kind, resources::ControlKind::kCenteredStatic);
  EXPECT_EQ(table.controls[1].text, u"seconds...");
}

TEST_F(ReinitProgressDialogTest, MakesASmoothBarAcrossTheDialog) {
  PutTags(2);
  Reinitialize([](headless::HeadlessDialog& window) {
    const auto progress = window.GetProgress(1212);
    ASSERT_TRUE(progress.has_value());
    const platform::Rect client = window.GetClientRect();
    EXPECT_EQ(progress->bar.rect, (platform::Rect{10, 100, client.right - 10, 120}));
    EXPECT_TRUE(progress->bar.isSmooth);
    EXPECT_EQ(progress->bar.minimum, 0);
    EXPECT_EQ(progress->bar.maximum, 2);
    EXPECT_EQ(progress->bar.step, 1);
    EXPECT_EQ(progress->position, 0);
    EXPECT_GE(client.bottom, 120) << "All of it can be seen.";
  });
}

TEST_F(ReinitProgressDialogTest, KeepsItsTextsWithoutALanguageFile) {
  PutTags(1);
  Reinitialize([](headless::HeadlessDialog& window) {
    EXPECT_EQ(window.GetText(kReinitWaitLine1Id), u"Please wait a few");
    EXPECT_EQ(window.GetText(kReinitWaitLine2Id), u"seconds...");
    EXPECT_EQ(window.Paint()[1].text, u"Base reinitialization...");
  });
}

TEST_F(ReinitProgressDialogTest, TakesItsTextsFromTheLanguageFile) {
  LoadLanguage(u"ID_S_DIALOG_UP_1 Bitte warten\r\nID_STTL2 Neu: 100%s\r\n");
  PutTags(1);
  Reinitialize([](headless::HeadlessDialog& window) {
    EXPECT_EQ(window.GetText(kReinitWaitLine1Id), u"Bitte warten");
    EXPECT_EQ(window.GetText(kReinitWaitLine2Id), u"") << "A key that the file lacks is empty.";
    EXPECT_EQ(window.Paint()[1].text, u"Neu: 100%s");
  });
}

TEST_F(ReinitProgressDialogTest, PaintsItsHeaderAlwaysAndMakesBothTextsBold) {
  PutTags(1);
  Reinitialize([](headless::HeadlessDialog& window) {
    EXPECT_EQ(window.GetFont(kReinitWaitLine1Id), std::nullopt);
    for (int i = 0; i < 2; ++i) {
      EXPECT_EQ(window.Paint().size(), 2U);
      for (const int id : {kReinitWaitLine1Id, kReinitWaitLine2Id}) {
        EXPECT_EQ(window.GetFont(id), (platform::Font{u"Tahoma", 14, 700}));
      }
    }
  });
}

TEST_F(ReinitProgressDialogTest, WithoutTagsItEndsAtOnceAndNothingIsDone) {
  PutRecording(u"1", 1);
  bool wasShown = false;
  EXPECT_EQ(Reinitialize([&](headless::HeadlessDialog&) { wasShown = true; }), 0);
  EXPECT_FALSE(wasShown);
  EXPECT_EQ(m_machine.simulation.GetElapsed(), 0U);
  EXPECT_FALSE(m_machine.files.GetFile(storage::TemplatePath(u"1")).has_value());
  EXPECT_TRUE(GetMessages().empty());
}

TEST_F(ReinitProgressDialogTest, AMissingPageIsReportedAndTheDialogEndsAtOnce) {
  maintenance::ReinitProgressDialog dialog(m_machine.Get(), m_texts);
  dialog.set_Pageone_point(nullptr);
  const auto shown = m_machine.ui.GetMessages();
  ASSERT_EQ(shown.size(), 1U);
  EXPECT_EQ(shown[0].box.text, u"error set_Pageone_point");
  EXPECT_EQ(shown[0].box.captionKind, platform::MessageCaption::kApplication);
  EXPECT_EQ(dialog.DoModal(), 0);
}

// The rows of its life, each on the clock that does not wait.

TEST_F(ReinitProgressDialogTest, TheWorkerIsSuspendedUntilTheDialogHasBeenThereForASecond) {
  PutTags(1);
  const auto old = GetTemplate(u"1");
  Reinitialize([&](headless::HeadlessDialog& window) {
    m_machine.simulation.Sleep(999);
    EXPECT_EQ(window.GetProgress(kProgressBarId)->position, 0);
    EXPECT_EQ(GetTemplate(u"1"), old);
    m_machine.simulation.Sleep(2);
    EXPECT_EQ(window.GetProgress(kProgressBarId)->position, 1);
    EXPECT_EQ(GetTemplate(u"1"), old) << "The first recording waits for 300 ms more.";
  });
}

TEST_F(ReinitProgressDialogTest, EachRecordingTakesThreeHundredMillisecondsAndOneStep) {
  PutTags(4);
  Reinitialize([&](headless::HeadlessDialog& window) {
    m_machine.simulation.Sleep(1001);
    for (int done = 0; done < 4; ++done) {
      EXPECT_EQ(window.GetProgress(kProgressBarId)->position, done + 1);
      EXPECT_EQ(window.GetResult(), std::nullopt);
      m_machine.simulation.Sleep(300);
    }
  });
  EXPECT_TRUE(m_wasEndedByItself);
  EXPECT_EQ(m_bar->position, 4);
}

TEST_F(ReinitProgressDialogTest, EndsAsSoonAsTheLastOfAsManyRecordingsAsTagsIsDone) {
  PutTags(3);
  EXPECT_EQ(Reinitialize(), 0);
  EXPECT_EQ(m_machine.simulation.GetElapsed(), 1900U) << "1000 and three times 300.";
}

TEST_F(ReinitProgressDialogTest, WithMoreRecordingsThanTagsItStaysUntilAllAreDone) {
  PutTags(2);
  PutRecording(u"8", 8);
  PutRecording(u"9", 9);
  EXPECT_EQ(Reinitialize(), 0);
  EXPECT_EQ(m_machine.simulation.GetElapsed(), 2200U);
  EXPECT_EQ(m_bar->position, 2) << "The bar counts tags.";
  EXPECT_EQ(GetTemplate(u"9"), Expected(9));
}

TEST_F(ReinitProgressDialogTest, WithOneRecordingLessThanTagsBothSetsAtTheEndAreOneStep) {
  PutTags(2);
  m_session.AddTag(u"5", u"Eve");
  EXPECT_EQ(Reinitialize(), 0);
  // The worker sets the event for the last recording and once more before the monitor has its turn.
  EXPECT_EQ(m_machine.simulation.GetElapsed(), 11'600U);
  EXPECT_EQ(m_bar->position, 3);
}

TEST_F(ReinitProgressDialogTest, WithFewerRecordingsItStaysForTenSecondsMore) {
  PutTags(1);
  for (const std::u16string_view name : {u"5", u"6", u"7"}) {
    m_session.AddTag(name, name);
  }
  EXPECT_EQ(Reinitialize(), 0);
  EXPECT_TRUE(m_wasEndedByItself);
  EXPECT_EQ(m_machine.simulation.GetElapsed(), 11'300U);
  EXPECT_EQ(m_workerEnd, 11'300U);
}

TEST_F(ReinitProgressDialogTest, TheUserCannotCloseItWhileTheWorkerWorks) {
  PutTags(2);
  EXPECT_EQ(Reinitialize([&](headless::HeadlessDialog& window) {
              for (int i = 0; i < 8; ++i) {
                window.Close();
                window.PressEnter();
                EXPECT_EQ(window.GetResult(), std::nullopt);
                EXPECT_EQ(window.GetText(resources::kReinitWaitLine1Id), u"Please wait a few");
                EXPECT_EQ(window.GetText(resources::kReinitWaitLine2Id), u"seconds...");
                m_machine.simulation.Sleep(150);
              }
            }),
            0);
  EXPECT_EQ(GetTemplate(u"2"), Expected(2));
}

TEST_F(ReinitProgressDialogTest, AfterTheWorkerGaveUpItStaysUntilTheUserClosesIt) {
  PutTags(2);
  const auto held = m_machine.files.Open(storage::TemplatePath(u"1"), {});
  EXPECT_EQ(Reinitialize([&](headless::HeadlessDialog& window) {
              m_machine.simulation.Sleep(60'000);
              EXPECT_EQ(GetMessages().size(), 1U);
              EXPECT_EQ(window.GetResult(), std::nullopt);
              EXPECT_EQ(window.GetText(resources::kReinitWaitLine1Id), u"The work has stopped.");
              EXPECT_EQ(window.GetText(resources::kReinitWaitLine2Id), u"Press Escape to close.");
              window.PressEnter();
              EXPECT_EQ(window.GetResult(), 2);
            }),
            2);
}

TEST_F(ReinitProgressDialogTest, CanRunAgain) {
  PutTags(2);
  const auto paint = [](headless::HeadlessDialog& window) {
    EXPECT_EQ(window.Paint().size(), 2U);
    EXPECT_EQ(window.GetFont(kReinitWaitLine1Id), (platform::Font{u"Tahoma", 14, 700}));
  };
  EXPECT_EQ(Reinitialize(paint), 0);
  PutTemplate(u"1", {9, 9, 9, 9, 9});
  const auto old = GetTemplate(u"1");
  EXPECT_EQ(Reinitialize(paint), 0);
  EXPECT_EQ(m_bar->position, 2);
  EXPECT_NE(GetTemplate(u"1"), old);
  EXPECT_FALSE(GetTemplate(u"1").empty());
  EXPECT_TRUE(GetMessages().empty());
  const auto held = m_machine.files.Open(storage::TemplatePath(u"1"), {});
  EXPECT_EQ(Reinitialize(), 2);
  EXPECT_EQ(Reinitialize([](headless::HeadlessDialog& window) {
              window.Close();
              EXPECT_EQ(window.GetResult(), std::nullopt) << "As closed as at the first time.";
            }),
            2);
}

TEST_F(ReinitProgressDialogTest, AWindowThatGoesEarlyTakesBothThreadsWithIt) {
  PutTags(20);
  const auto last = GetTemplate(u"9");
  EXPECT_EQ(Reinitialize([&](headless::HeadlessDialog& window) {
              m_machine.simulation.Sleep(2000);
              window.EndDialog(7);
            }),
            7);
  EXPECT_LT(m_machine.simulation.GetElapsed(), 3000U) << "It does not wait for the whole work.";
  EXPECT_EQ(GetTemplate(u"9"), last);
  EXPECT_EQ(m_machine.files.CountOpenHandles(), 0U);
}

/// The fixture's machine with other threads.
platform::Platform With(const platform::Platform& whole, platform::Threads& threads) {
  return {whole.files, whole.waveIn,   whole.clock,    threads,       whole.process,
          whole.ui,    whole.registry, whole.contacts, whole.waveOut, whole.shell};
}

TEST_F(ReinitProgressDialogTest, ClosesItsDoneEventAtItsEnd) {
  PutTags(1);
  support::WatchedThreads threads(m_machine.simulation);
  int openMeanwhile = 0;
  EXPECT_EQ(
      ReinitializeOn(With(m_machine.Get(), threads),
                     [&](headless::HeadlessDialog&) { openMeanwhile = threads.CountEvents(); }),
      0);
  EXPECT_EQ(openMeanwhile, 1);
  EXPECT_EQ(threads.CountEvents(), 0);
}

TEST_F(ReinitProgressDialogTest, WithoutAThreadOrAnEventItSaysSoAndEnds) {
  PutTags(1);
  const auto old = GetTemplate(u"1");
  support::WatchedThreads poor(m_machine.simulation);
  const platform::Platform platform = With(m_machine.Get(), poor);
  poor.Refuse({support::WatchedThreads::Made::kThread});
  EXPECT_EQ(ReinitializeOn(platform), 0);
  poor.Refuse({support::WatchedThreads::Made::kEvent});
  EXPECT_EQ(ReinitializeOn(platform), 0);
  poor.Refuse({});
  m_session.workerEvent.reset();
  EXPECT_EQ(ReinitializeOn(platform), 0);
  EXPECT_EQ(GetMessages().size(), 3U);
  EXPECT_TRUE(GetMessages()[0].starts_with(u"The templates cannot be made again"));
  EXPECT_EQ(GetTemplate(u"1"), old);
}

}  // namespace
