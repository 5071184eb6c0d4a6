#include "tests/maintenance/reinit_page_fixture.h"
#include "tests/support/results.h"

namespace {

class PageOneReinit : public ReinitPageFixture {
 protected:
  PageOneReinit() {
    m_machine.ui.SetDialogStory(138, [this](headless::HeadlessDialog& window) {
      ++m_shown;
      m_versionAtStart = GetVersion();
      EXPECT_TRUE(window.WaitForEnd());
    });
  }

  int m_shown = 0;
  std::vector<std::byte> m_versionAtStart;
};

const support::Bytes kOldTemplate(6);

TEST_F(PageOneReinit, WithoutTheKeyNothingHappens) {
  PutSpokenTag(u"100", 1);
  Open();
  EXPECT_EQ(m_shown, 0);
  EXPECT_EQ(GetTemplate(u"100"), kOldTemplate);
}

TEST_F(PageOneReinit, WithTheCurrentVersionNothingHappens) {
  PutSpokenTag(u"100", 1);
  PutVersion(u"3");
  Open();
  EXPECT_EQ(m_shown, 0);
  EXPECT_EQ(GetTemplate(u"100"), kOldTemplate);
  EXPECT_EQ(m_machine.simulation.GetElapsed(), 0U);
}

TEST_F(PageOneReinit, AMissingVersionIsWrittenAndEveryTemplateComputedAgain) {
  PutSpokenTag(u"100", 1);
  PutSpokenTag(u"200", 2);
  ASSERT_TRUE(m_machine.registry.CreateKey(storage::kSetupKey));
  Open();
  EXPECT_EQ(m_shown, 1);
  EXPECT_EQ(GetVersion().size(), 8U);
  EXPECT_TRUE(IsWholeTemplate(*GetTemplate(u"100")));
  EXPECT_GT(GetTemplate(u"100")->size(), 6U);
  EXPECT_GT(GetTemplate(u"200")->size(), 6U);
}

TEST_F(PageOneReinit, AnotherVersionIsRewrittenBeforeTheWorkIsDone) {
  PutSpokenTag(u"100", 1);
  PutVersion(u"2");
  Open();
  EXPECT_EQ(m_shown, 1);
  EXPECT_EQ(m_versionAtStart.size(), 32U);
  EXPECT_EQ(m_versionAtStart, GetVersion());
}

TEST_F(PageOneReinit, HappensOnceForEachChange) {
  PutSpokenTag(u"100", 1);
  PutVersion(u"");
  Open();
  Open();
  EXPECT_EQ(m_shown, 1);
}

TEST_F(PageOneReinit, WorkThatWasInterruptedIsNotDoneAgain) {
  PutSpokenTag(u"100", 1);
  PutVersion(u"2");
  m_machine.ui.SetDialogStory(138, [](headless::HeadlessDialog& window) { window.EndDialog(0); });
  Open();
  EXPECT_EQ(GetTemplate(u"100"), kOldTemplate);
  Open();
  EXPECT_EQ(m_shown, 0);
  EXPECT_EQ(GetTemplate(u"100"), kOldTemplate);
}

TEST_F(PageOneReinit, WithoutTagsTheVersionIsWrittenAndNothingElseDone) {
  PutVersion(u"2");
  ASSERT_TRUE(m_machine.files.PutFile(storage::WavePath(u"900"), Recording(1)));
  Open();
  EXPECT_EQ(m_shown, 0) << "It ended before it was shown.";
  EXPECT_EQ(GetVersion().size(), 32U);
  EXPECT_EQ(GetTemplate(u"900"), std::nullopt);
  EXPECT_EQ(m_machine.simulation.GetElapsed(), 0U);
}

TEST_F(PageOneReinit, ComesAfterThePageIsSetUp) {
  PutSpokenTag(u"100", 1);
  PutVersion(u"2");
  std::u16string label;
  m_machine.ui.SetDialogStory(138, [&](headless::HeadlessDialog& window) {
    label = m_dialog->GetText(resources::kCountLabelId);
    EXPECT_EQ(m_machine.ui.GetCursor(), platform::Cursor::kNormal);
    window.WaitForEnd();
  });
  Open();
  EXPECT_EQ(label, u"Learned commands: 1");
}

TEST_F(PageOneReinit, TheVersionCheckIsPostedAndNotCalled) {
  PutSpokenTag(u"100", 1);
  PutVersion(u"2");
  const auto before = GetVersion();
  tags::Page_one page(m_machine.Get(), m_texts);
  headless::HeadlessDialog dialog(resources::kLearningDialog, page, &m_machine.simulation);
  page.OnInitDialog();
  EXPECT_EQ(GetVersion(), before);
  EXPECT_EQ(m_shown, 0);
  dialog.DeliverPosted();
  EXPECT_NE(GetVersion(), before);
  EXPECT_EQ(m_shown, 1);
}

TEST_F(PageOneReinit, TheWorkerIsCreatedSuspendedAndBeginsAfterASecond) {
  PutSpokenTag(u"100", 1);
  PutVersion(u"2");
  m_machine.ui.SetDialogStory(138, [&](headless::HeadlessDialog& window) {
    EXPECT_FALSE(window.WaitForEnd(999));
    EXPECT_EQ(GetTemplate(u"100"), kOldTemplate);
    EXPECT_TRUE(window.WaitForEnd());
  });
  Open();
  EXPECT_NE(GetTemplate(u"100"), kOldTemplate);
}

TEST_F(PageOneReinit, DoesNotComeIfTheContactsWereAway) {
  PutSpokenTag(u"100", 1);
  PutVersion(u"2");
  m_machine.contacts.FailOpening(machine::SimulatedContacts::Opening::kLogon);
  Open();
  EXPECT_EQ(m_shown, 0);
  EXPECT_EQ(GetVersion(), support::Utf16Bytes(std::u16string(u"2") + u'\0'));
}

TEST_F(PageOneReinit, WithoutRecordingsTheProcessEndsAndThePageCanGo) {
  const storage::TagStore store(m_machine.files, m_machine.registry);
  ASSERT_EQ(support::ErrorOf(store.WriteEntry(u"100", kAnn, u"Mobile")), std::nullopt);
  PutVersion(u"2");
  Open();
  EXPECT_EQ(GetMessages(), Texts{u"Error"});
  EXPECT_EQ(m_machine.process.GetExitCode(), 0);
  m_dialog.reset();
  m_page.reset();
}

TEST_F(PageOneReinit, AfterItATagCanBeRecorded) {
  PutSpokenTag(u"100", 1);
  PutVersion(u"2");
  Open();
  m_dialog->Press(resources::kRecordButtonId);
  EXPECT_TRUE(GetMessages().empty());
  EXPECT_EQ(m_page->GetTags().tagCount, 2);
}

TEST_F(PageOneReinit, SeveralTimesByOnePage) {
  PutSpokenTag(u"100", 1);
  PutVersion(u"2");
  Open();
  PutVersion(u"1");
  m_page->OnCommand(2222, platform::CommandEvent::kPosted);
  EXPECT_EQ(m_shown, 2);
}

}  // namespace
