#include "tests/support/failing_file_system.h"
#include "tests/support/failing_registry.h"
#include "tests/tags/page_fixture.h"

namespace {

using Texts = std::vector<std::u16string>;
using namespace resources;

class PageOneList : public PageFixture {
 protected:
  void Refuse() {
    m_machine.ui.SetAnswerer(
        [](const platform::MessageBox&) { return platform::MessageAnswer::kCancel; });
  }
  /// Keeps a file open, as the companion dialer does.
  void Hold(const std::u16string& path) {
    m_held = m_machine.files.Open(path, {}).file;
    ASSERT_NE(m_held, nullptr);
  }

  std::unique_ptr<platform::File> m_held;
};

TEST_F(PageOneList, ListsTheTagsInTheOrderOfTheRegistry) {
  PutTag(u"300", kBob, u"Home");
  PutTag(u"100", kAnn, u"Mobile");
  const auto& dialog = Open();
  EXPECT_EQ(dialog.GetItems(kTagListId), (Texts{u"Bob Ray 5550001 H", u"Ann Lee 5551234 M"}));
  EXPECT_EQ(m_page->GetTags().GetRecord(0)->GetTagName(), u"300");
  EXPECT_EQ(m_page->GetTags().GetRecord(1)->GetDisplayText(), u"Ann Lee 5551234 M");
}

TEST_F(PageOneList, OneStaleTagAmongThreeIsCleanedAwayButStillCounted) {
  PutTag(u"100", kAnn, u"Mobile");
  PutTag(u"200", 999, u"Mobile");
  PutTag(u"300", kBob, u"Home");
  const auto& dialog = Open();
  EXPECT_EQ(dialog.GetItems(kTagListId), (Texts{u"Ann Lee 5551234 M", u"Bob Ray 5550001 H"}));
  EXPECT_EQ(GetEntries(), (Texts{u"100", u"300"}));
  EXPECT_FALSE(HasFile(storage::WavePath(u"200")));
  EXPECT_FALSE(HasFile(storage::TemplatePath(u"200")));
  EXPECT_EQ(dialog.GetText(kCountLabelId), u"Learned commands: 3");
  EXPECT_EQ(m_page->GetTags().GetRecord(1)->GetTagName(), u"300");
  EXPECT_EQ(m_page->GetTags().GetRecord(2)->GetTagName(), u"");
}

TEST_F(PageOneList, AStaleTagThatCannotBeDeletedEndsTheLoad) {
  PutTag(u"100", kAnn, u"Mobile");
  PutTag(u"200", 999, u"Mobile");
  PutTag(u"300", kBob, u"Home");
  Hold(storage::WavePath(u"200"));
  EXPECT_EQ(Open().GetItemCount(kTagListId), 1);
  EXPECT_EQ(GetMessages(), Texts{u"Error in 11"});
  EXPECT_EQ(GetEntries(), (Texts{u"100", u"200", u"300"}));

  m_held.reset();
  Hold(storage::TemplatePath(u"200"));
  Open();
  EXPECT_EQ(GetMessages().back(), u"Error in 22");
  EXPECT_FALSE(HasFile(storage::WavePath(u"200"))) << "The recording went first.";
}

TEST_F(PageOneList, AStaleEntryThatCannotBeDeletedEndsTheLoad) {
  PutTag(u"200", 999, u"Mobile");
  support::FailingRegistry failing(m_machine.registry);
  bool saw = false;
  for (std::size_t call = 1; call < 30 && !saw; ++call) {
    if (!HasFile(storage::WavePath(u"200"))) {
      PutTag(u"200", 999, u"Mobile");
    }
    failing.FailCall(call, support::Failing::kOnce);
    OpenOn(m_machine.GetWith(m_machine.files, failing));
    saw = !GetMessages().empty() && GetMessages().back() == u"Error in 33";
  }
  EXPECT_TRUE(saw);
  EXPECT_EQ(GetEntries(), Texts{u"200"});
}

TEST_F(PageOneList, ATagOfContactsThatAreAwayStaysUnderItsOwnName) {
  PutTag(u"100", kAnn, u"Mobile");
  PutTag(u"200", 999, u"Mobile");
  m_machine.contacts.SetLookup(999, platform::ContactLookup::kFailed);
  const auto& dialog = Open();
  EXPECT_EQ(dialog.GetItems(kTagListId), (Texts{u"Ann Lee 5551234 M", u"200"}));
  EXPECT_EQ(GetEntries(), (Texts{u"100", u"200"}));
  EXPECT_TRUE(HasFile(storage::WavePath(u"200")));
}

TEST_F(PageOneList, AnUnknownPhoneTypeListsTheNameAlone) {
  PutTag(u"100", kAnn, u"Pager");
  EXPECT_EQ(Open().GetItems(kTagListId), Texts{u"Ann Lee"});
  EXPECT_EQ(m_page->GetTags().GetRecord(0)->GetTagName(), u"100");
  EXPECT_EQ(m_page->GetTags().GetRecord(0)->GetDisplayText(), u"")
      << "Only a text with a number is kept.";
}

TEST_F(PageOneList, SelectionEnablesPlayAndDelete) {
  PutTag(u"100", kAnn, u"Mobile");
  auto& dialog = Open();
  EXPECT_FALSE(dialog.IsEnabled(kPlayButtonId));
  dialog.Choose(kTagListId, 0);
  EXPECT_TRUE(dialog.IsEnabled(kPlayButtonId));
  EXPECT_TRUE(dialog.IsEnabled(kDeleteButtonId));
}

TEST_F(PageOneList, PlayPlaysTheSelectedRecording) {
  PutTag(u"100", kAnn, u"Mobile");
  PutTag(u"200", kBob, u"Home");
  ASSERT_TRUE(m_machine.files.PutFile(storage::WavePath(u"200"),
                                      support::WaveFile(support::Noise(500, 9000, 1))));
  auto& dialog = Open();
  dialog.Choose(kTagListId, 1);
  dialog.Press(kPlayButtonId);
  ASSERT_EQ(m_machine.waveOut.GetPlayed().size(), 1U);
  EXPECT_EQ(m_machine.waveOut.GetPlayed()[0].bytes, support::BytesOf(support::Noise(500, 9000, 1)));
  dialog.Choose(kTagListId, 0);
  dialog.Press(kPlayButtonId);
  EXPECT_EQ(m_page->GetPlayCode(), audio::kSoundNoRiff);
  EXPECT_TRUE(GetMessages().empty()) << "The player shows no message.";
}

TEST_F(PageOneList, DeleteAsksFirst) {
  PutTag(u"100", kAnn, u"Mobile");
  auto& dialog = Open();
  dialog.Choose(kTagListId, 0);
  Refuse();
  dialog.Press(kDeleteButtonId);
  const auto messages = m_machine.ui.GetMessages();
  ASSERT_EQ(messages.size(), 1U);
  EXPECT_EQ(messages[0].box.text, u"The tag will be deleted!");
  EXPECT_EQ(messages[0].box.caption, u"Attention");
  EXPECT_EQ(messages[0].box.style,
            platform::MessageStyle::kOkCancel | platform::MessageStyle::kIconExclamation);
  EXPECT_EQ(GetEntries(), Texts{u"100"});
  EXPECT_EQ(dialog.GetItemCount(kTagListId), 1);
}

TEST_F(PageOneList, DeleteRemovesTheTagAndMovesTheOthersDown) {
  PutTag(u"100", kAnn, u"Mobile");
  PutTag(u"200", kBob, u"Home");
  auto& dialog = Open();
  dialog.Choose(kTagListId, 0);
  dialog.Press(kDeleteButtonId);
  EXPECT_EQ(GetEntries(), Texts{u"200"});
  EXPECT_FALSE(HasFile(storage::WavePath(u"100")));
  EXPECT_FALSE(HasFile(storage::TemplatePath(u"100")));
  EXPECT_EQ(dialog.GetItems(kTagListId), Texts{u"Bob Ray 5550001 H"});
  EXPECT_EQ(m_page->GetTags().GetRecord(0)->GetTagName(), u"200");
  EXPECT_FALSE(dialog.IsEnabled(kPlayButtonId));
  EXPECT_FALSE(dialog.IsEnabled(kDeleteButtonId));
  EXPECT_FALSE(dialog.IsEnabled(kTestButtonId));
  EXPECT_TRUE(dialog.IsEnabled(kDeleteAllButtonId));
  EXPECT_EQ(dialog.GetText(kCountLabelId), u"Learned commands: 1");

  dialog.Choose(kTagListId, 0);
  dialog.Press(kDeleteButtonId);
  EXPECT_FALSE(dialog.IsEnabled(kDeleteAllButtonId));
  EXPECT_EQ(m_page->GetTags().tagCount, 0);
}

TEST_F(PageOneList, DeleteSpeaksEnglishInItsLabelWhateverTheLanguage) {
  LoadLanguage(u"ID_S_MESSAGE_L Gelernt:\r\n");
  PutTag(u"100", kAnn, u"Mobile");
  auto& dialog = Open();
  EXPECT_EQ(dialog.GetText(kCountLabelId), u"Gelernt: 1");
  dialog.Choose(kTagListId, 0);
  dialog.Press(kDeleteButtonId);
  EXPECT_EQ(dialog.GetText(kCountLabelId), u"Learned commands: 0");
}

TEST_F(PageOneList, DeleteOfARecordingInUseChangesNothing) {
  PutTag(u"100", kAnn, u"Mobile");
  auto& dialog = Open();
  dialog.Choose(kTagListId, 0);
  Hold(storage::WavePath(u"100"));
  dialog.Press(kDeleteButtonId);
  EXPECT_EQ(GetMessages().back(), u"The tag is in use. Try to delete it later.");
  EXPECT_EQ(m_machine.ui.GetMessages().back().box.captionKind,
            platform::MessageCaption::kApplication);
  EXPECT_TRUE(HasFile(storage::TemplatePath(u"100")));
  EXPECT_EQ(m_page->GetTags().tagCount, 1);
  EXPECT_EQ(dialog.GetItemCount(kTagListId), 1);
  EXPECT_TRUE(dialog.IsEnabled(kDeleteButtonId));
}

TEST_F(PageOneList, DeleteOfATemplateInUseHasLostTheRecordingAlready) {
  PutTag(u"100", kAnn, u"Mobile");
  auto& dialog = Open();
  dialog.Choose(kTagListId, 0);
  Hold(storage::TemplatePath(u"100"));
  dialog.Press(kDeleteButtonId);
  EXPECT_EQ(GetMessages().back(), u"The tag is in use. Try to delete it later.");
  EXPECT_FALSE(HasFile(storage::WavePath(u"100")));
  EXPECT_EQ(m_page->GetTags().tagCount, 1);
  EXPECT_EQ(GetEntries(), Texts{u"100"});
}

TEST_F(PageOneList, DeleteWhoseEntryStaysKeepsTheLineButNotTheRecord) {
  PutTag(u"100", kAnn, u"Mobile");
  PutTag(u"200", kBob, u"Home");
  support::FailingRegistry failing(m_machine.registry);
  auto& dialog = OpenOn(m_machine.GetWith(m_machine.files, failing));
  dialog.Choose(kTagListId, 0);
  failing.FailCall(1, support::Failing::kFromThenOn);
  dialog.Press(kDeleteButtonId);
  EXPECT_EQ(GetMessages().back(), u"The tag is in use. Try to delete it later.");
  EXPECT_EQ(dialog.GetItemCount(kTagListId), 2);
  EXPECT_EQ(m_page->GetTags().tagCount, 1);
  EXPECT_EQ(m_page->GetTags().GetRecord(0)->GetTagName(), u"200");
}

TEST_F(PageOneList, DeleteAllEmptiesEverything) {
  PutTag(u"100", kAnn, u"Mobile");
  PutTag(u"200", kBob, u"Home");
  ASSERT_TRUE(m_machine.files.PutFile(storage::WavePath(u"stray"), support::Bytes(5)));
  auto& dialog = Open();
  dialog.Choose(kTagListId, 0);
  dialog.Press(kDeleteAllButtonId);
  EXPECT_EQ(GetMessages(), Texts{u"All voice tags will be deleted!"});
  EXPECT_TRUE(GetEntries().empty());
  EXPECT_FALSE(HasFile(storage::WavePath(u"stray")));
  EXPECT_EQ(dialog.GetItemCount(kTagListId), 0);
  for (const int id : {kPlayButtonId, kDeleteButtonId, kDeleteAllButtonId, kTestButtonId}) {
    EXPECT_FALSE(dialog.IsEnabled(id)) << id;
  }
  EXPECT_EQ(dialog.GetText(kCountLabelId), u"Learned commands: 0");
  EXPECT_TRUE(dialog.IsEnabled(kRecordButtonId));
  for (const std::int32_t index : {0, 1}) {
    EXPECT_EQ(m_page->GetTags().GetRecord(index)->GetTagName(), u"");
    EXPECT_EQ(m_page->GetTags().GetRecord(index)->GetDisplayText(), u"");
  }
}

TEST_F(PageOneList, DeleteAllCanBeCancelled) {
  PutTag(u"100", kAnn, u"Mobile");
  auto& dialog = Open();
  Refuse();
  dialog.Press(kDeleteAllButtonId);
  EXPECT_EQ(GetEntries(), Texts{u"100"});
  EXPECT_TRUE(HasFile(storage::WavePath(u"100")));
}

TEST_F(PageOneList, DeleteAllReportsAFileInUseAndGoesOn) {
  PutTag(u"100", kAnn, u"Mobile");
  PutTag(u"200", kBob, u"Home");
  auto& dialog = Open();
  Hold(storage::WavePath(u"100"));
  dialog.Press(kDeleteAllButtonId);
  EXPECT_EQ(GetMessages(), (Texts{u"All voice tags will be deleted!",
                                  u"The tag is in use. Try to delete it later."}));
  EXPECT_FALSE(HasFile(storage::WavePath(u"200")));
  EXPECT_TRUE(GetEntries().empty());
  EXPECT_EQ(dialog.GetItemCount(kTagListId), 0);
}

TEST_F(PageOneList, DeleteAllWhoseSearchFailsSaysErrorAndGoesOn) {
  PutTag(u"100", kAnn, u"Mobile");
  PutTag(u"200", kBob, u"Home");
  support::FailingFileSystem failing(m_machine.files);
  bool saw = false;
  for (std::size_t call = 1; call < 12 && !saw; ++call) {
    PutTag(u"100", kAnn, u"Mobile");
    PutTag(u"200", kBob, u"Home");
    auto& dialog = OpenOn(m_machine.GetWith(failing, m_machine.registry));
    failing.FailCall(call, support::Failing::kOnce);
    dialog.Press(kDeleteAllButtonId);
    for (const auto& shown : m_machine.ui.GetMessages()) {
      if (shown.box.text == u"ERROR") {
        saw = true;
        EXPECT_EQ(shown.box.captionKind, platform::MessageCaption::kNone);
        EXPECT_EQ(shown.box.style, platform::MessageStyle::kOk);
      }
    }
    EXPECT_TRUE(GetEntries().empty());
  }
  EXPECT_TRUE(saw);
}

TEST_F(PageOneList, DeleteAllWhoseKeyStaysKeepsTheList) {
  PutTag(u"100", kAnn, u"Mobile");
  support::FailingRegistry failing(m_machine.registry);
  auto& dialog = OpenOn(m_machine.GetWith(m_machine.files, failing));
  failing.FailCall(1, support::Failing::kFromThenOn);
  dialog.Press(kDeleteAllButtonId);
  EXPECT_EQ(GetMessages().back(), u"The tag is in use. Try to delete it later.");
  EXPECT_FALSE(HasFile(storage::WavePath(u"100")));
  EXPECT_EQ(dialog.GetItemCount(kTagListId), 1);
  EXPECT_EQ(m_page->GetTags().tagCount, 1);
}

}  // namespace
