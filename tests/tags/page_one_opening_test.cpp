#include "tests/support/results.h"
#include "tests/tags/page_fixture.h"

namespace {

using Texts = std::vector<std::u16string>;
using namespace resources;

using PageOneOpening = PageFixture;

TEST_F(PageOneOpening, TheConstructorMakesTheInstallFolders) {
  const tags::Page_one page(m_machine.Get(), m_texts);
  EXPECT_TRUE(m_machine.files.Find(storage::kInstallFolder));
  EXPECT_EQ(support::ErrorOf(m_machine.files.Find(storage::kWaveFolder)),
            platform::FileError::kNotFound);
}

TEST_F(PageOneOpening, FillsBothBoxesAndChoosesTheFirstContact) {
  const auto& dialog = Open();
  EXPECT_EQ(dialog.GetItems(kContactComboId), (Texts{u"Lee Ann", u"Ray Bob"}));
  EXPECT_EQ(dialog.GetSelection(kContactComboId), 0);
  EXPECT_EQ(dialog.GetItems(kNumberComboId), (Texts{u"1110000 Home", u"5551234 Mobile"}));
  EXPECT_EQ(dialog.GetSelection(kNumberComboId), 0);
  EXPECT_EQ(m_page->GetPicker().GetOid(), static_cast<std::uint32_t>(kAnn));
  EXPECT_TRUE(GetMessages().empty());
}

TEST_F(PageOneOpening, WithoutTagsOnlyRecordIsEnabled) {
  const auto& dialog = Open();
  EXPECT_TRUE(dialog.IsEnabled(kRecordButtonId));
  for (const int id : {kPlayButtonId, kDeleteButtonId, kDeleteAllButtonId, kTestButtonId}) {
    EXPECT_FALSE(dialog.IsEnabled(id)) << id;
  }
  EXPECT_EQ(dialog.GetText(kCountLabelId), u"Learned commands: 0");
  EXPECT_EQ(m_machine.ui.GetCursor(), platform::Cursor::kNormal);
}

TEST_F(PageOneOpening, WithoutContactsRecordIsDisabled) {
  m_machine.contacts.Remove(kAnn);
  m_machine.contacts.Remove(kBob);
  const auto& dialog = Open();
  EXPECT_FALSE(dialog.IsEnabled(kRecordButtonId));
  EXPECT_EQ(m_page->GetPicker().GetOid(), 0U);
}

TEST_F(PageOneOpening, DeleteAllIsEnabledByOneTagAndTestByTwo) {
  PutTag(u"100", kAnn, u"Mobile");
  EXPECT_TRUE(Open().IsEnabled(kDeleteAllButtonId));
  EXPECT_FALSE(m_dialog->IsEnabled(kTestButtonId));
  PutTag(u"200", kBob, u"Home");
  EXPECT_TRUE(Open().IsEnabled(kTestButtonId));
  EXPECT_EQ(m_dialog->GetText(kCountLabelId), u"Learned commands: 2");
}

TEST_F(PageOneOpening, ASecondPageEndsItsProcessAtOnce) {
  Open();
  const tags::Page_one second(m_machine.Get(), m_texts);
  tags::Page_one* page = const_cast<tags::Page_one*>(&second);
  headless::HeadlessDialog dialog(kLearningDialog, *page, nullptr);
  page->OnInitDialog();
  EXPECT_EQ(m_machine.process.GetExitCode(), 0);
  EXPECT_TRUE(dialog.GetItems(kContactComboId).empty());
  EXPECT_TRUE(GetMessages().empty());
}

TEST_F(PageOneOpening, TheMutexGoesWithThePage) {
  Open();
  Open();
  EXPECT_EQ(m_machine.process.GetExitCode(), std::nullopt);
}

TEST_F(PageOneOpening, TheSamePageMayBeShownOnceMore) {
  PutTag(u"100", kAnn, u"Mobile");
  Open();
  ShowOnceMore();
  EXPECT_EQ(m_machine.process.GetExitCode(), std::nullopt);
  EXPECT_EQ(m_dialog->GetItemCount(kTagListId), 1);
  EXPECT_EQ(m_page->GetTags().tagCount, 1);
}

TEST_F(PageOneOpening, WhatWasChosenIsForgottenWhenThePageIsShownOnceMore) {
  auto& first = Open();
  first.Choose(kContactComboId, 0);
  first.Choose(kNumberComboId, 1);
  ASSERT_EQ(m_page->GetPicker().GetPhoneTypeWord(), u"Mobile");
  ShowOnceMore();
  EXPECT_EQ(m_page->GetPicker().GetPhoneTypeWord(), u"");
  EXPECT_EQ(m_dialog->GetItemText(kNumberComboId, *m_dialog->GetSelection(kNumberComboId)),
            u"1110000 Home");
  m_dialog->Press(kRecordButtonId);
  EXPECT_EQ(m_dialog->GetItems(kTagListId), Texts{u"Ann Lee 1110000 H"}) << "The kind shown.";
}

TEST_F(PageOneOpening, NobodyIsChosenWhenThePageIsShownOnceMoreWithoutContacts) {
  Open();
  ASSERT_EQ(m_page->GetPicker().GetOid(), static_cast<std::uint32_t>(kAnn));
  m_machine.contacts.Remove(kAnn);
  m_machine.contacts.Remove(kBob);
  ShowOnceMore();
  EXPECT_EQ(m_page->GetPicker().GetOid(), 0U);
  EXPECT_FALSE(m_dialog->IsEnabled(kRecordButtonId));
}

TEST_F(PageOneOpening, AFailureOfTheContactsIsTheLastThingThatHappens) {
  PutTag(u"100", kAnn, u"Mobile");
  m_machine.contacts.FailOpening(machine::SimulatedContacts::Opening::kLogon);
  const auto& dialog = Open();
  EXPECT_EQ(GetMessages(), Texts{u"Failed to logon to Pocket Outlook"});
  EXPECT_EQ(dialog.GetItemCount(kTagListId), 0);
  EXPECT_TRUE(dialog.IsEnabled(kPlayButtonId)) << "The buttons keep what the dialog gave them.";
  EXPECT_EQ(dialog.GetText(kCountLabelId), u"");
  EXPECT_EQ(GetEntries(), Texts{u"100"}) << "No tag is lost because its contacts were away.";
  EXPECT_EQ(m_machine.ui.GetCursor(), platform::Cursor::kNormal);
}

TEST_F(PageOneOpening, AFailingGetterEndsItToo) {
  m_machine.contacts.Add({.oid = 9, .lastName = u"X", .middleNameFails = true});
  PutTag(u"100", kAnn, u"Mobile");
  const auto& dialog = Open();
  EXPECT_EQ(GetMessages(), Texts{u"Failed to get middle name"});
  EXPECT_EQ(dialog.GetItemCount(kTagListId), 0);
}

TEST_F(PageOneOpening, ALanguageFileGivesEveryTextItsOwn) {
  LoadLanguage(
      u"ID_S_DIALOG_SET_L1 Kontakte\r\nID_S_DIALOG_SET_LBR Aufnehmen\r\n"
      u"ID_S_DIALOG_SET_LBP Hören\r\nID_S_DIALOG_SET_LBD Löschen\r\n"
      u"ID_S_DIALOG_SET_LBDA Leeren\r\nID_S_MESSAGE_L Gelernt:\r\n");
  const auto& dialog = Open();
  EXPECT_EQ(dialog.GetText(kContactsLabelId), u"Kontakte");
  EXPECT_EQ(dialog.GetText(kRecordButtonId), u"Aufnehmen");
  EXPECT_EQ(dialog.GetText(kPlayButtonId), u"Hören");
  EXPECT_EQ(dialog.GetText(kDeleteButtonId), u"Löschen");
  EXPECT_EQ(dialog.GetText(kDeleteAllButtonId), u"Leeren");
  EXPECT_EQ(dialog.GetText(kTestButtonId), u"") << "A key that the file lacks is empty.";
  EXPECT_EQ(dialog.GetText(kCountLabelId), u"Gelernt: 0");
}

TEST_F(PageOneOpening, ChoosingAContactListsItsNumbers) {
  auto& dialog = Open();
  dialog.Choose(kContactComboId, 1);
  EXPECT_EQ(dialog.GetItems(kNumberComboId), Texts{u"5550001 Home"});
  EXPECT_EQ(m_page->GetPicker().GetOid(), static_cast<std::uint32_t>(kBob));
  EXPECT_EQ(m_page->GetPicker().GetPhoneTypeWord(), u"Home");
}

TEST_F(PageOneOpening, ChoosingANumberTakesItsWord) {
  auto& dialog = Open();
  EXPECT_EQ(m_page->GetPicker().GetPhoneTypeWord(), u"");
  dialog.Choose(kNumberComboId, 1);
  EXPECT_EQ(m_page->GetPicker().GetPhoneTypeWord(), u"Mobile");
}

TEST_F(PageOneOpening, ThePageSerializesTheTemplateOfItsMathematics) {
  Open();
  framework::CFile file(m_machine.files);
  ASSERT_TRUE(file.Open(u"/a.st", framework::CFile::modeCreate | framework::CFile::modeWrite));
  framework::CArchive archive(file, framework::CArchive::Mode::kStore);
  m_page->Serialize(archive);
  EXPECT_TRUE(archive.Close());
  EXPECT_EQ(m_machine.files.GetFile(u"/a.st"), support::Bytes(6));
}

}  // namespace
