// What the Learning page does first, and what next.

#include <gmock/gmock.h>

#include <set>
#include <string>
#include <vector>

#include "tests/tags/watched_page.h"

namespace {

using Texts = std::vector<std::u16string>;
using namespace resources;
using testing::Each;
using testing::ElementsAre;

class PageOneOrder : public WatchedPage {};

TEST_F(PageOneOrder, ASecondPageEndsBeforeItReachesTheContacts) {
  using Opening = machine::SimulatedContacts::Opening;
  Open();
  ASSERT_EQ(m_machine.contacts.CountCalls(Opening::kInitialize), 1);
  tags::Page_one second(m_machine.Get(), m_texts);
  headless::HeadlessDialog dialog(kLearningDialog, second, nullptr);
  second.OnInitDialog();
  ASSERT_EQ(m_machine.process.GetExitCode(), 0);
  EXPECT_EQ(m_machine.contacts.CountCalls(Opening::kInitialize), 1);
  EXPECT_EQ(m_machine.contacts.CountCalls(Opening::kLogon), 1);
}

TEST_F(PageOneOrder, TheSoundDeviceIsThereBeforeTheContactsAreOpened) {
  // Contacts that fail end the opening, and the user records all the same.
  m_machine.contacts.AddFailingItem();
  auto& dialog = Open();
  ASSERT_FALSE(m_page->IsSetUp());
  dialog.Choose(kContactComboId, 0);
  dialog.Press(kRecordButtonId);
  EXPECT_EQ(GetEntries(), Texts{u"1000"});
  EXPECT_EQ(m_page->GetPlayCode(), audio::kPlayed);
}

TEST_F(PageOneOrder, TheWaitCursorIsSetWheneverTheContactsAreAskedWhileThePageOpens) {
  PutTag(u"100", kAnn, u"Mobile");
  std::set<std::string_view> calls;
  std::vector<platform::Cursor> cursors;
  m_contacts.SetListener([&](std::string_view call) {
    calls.insert(call);
    cursors.push_back(m_machine.ui.GetCursor());
  });
  OpenWatched();
  EXPECT_THAT(calls, ElementsAre("Connect", "GetCount", "GetItem", "GetItemFromOid", "Initialize",
                                 "Logon"));
  EXPECT_THAT(cursors, Each(platform::Cursor::kWait));
  EXPECT_EQ(m_machine.ui.GetCursor(), platform::Cursor::kNormal);
}

TEST_F(PageOneOrder, TheNormalCursorIsBackBeforeTheCheckOfTheVersionIsPosted) {
  std::vector<platform::Cursor> cursors;
  m_ui.SetListener([&](platform::Cursor cursor) {
    cursors.push_back(cursor);
    EXPECT_FALSE(m_dialog->HasPosted());
  });
  OpenWatched();
  EXPECT_THAT(cursors, ElementsAre(platform::Cursor::kWait, platform::Cursor::kNormal));
}

TEST_F(PageOneOrder, ATagIsMadeStepByStep) {
  auto& dialog = OpenWatched();
  Texts log;
  m_files.SetListener([&](const std::u16string& call) { log.push_back(call); });
  m_clock.SetListener([&](std::uint32_t milliseconds) {
    if (milliseconds == 150) {
      log.push_back(m_machine.ui.CountBeeps() == 1 ? u"cue after the beep" : u"cue in silence");
    }
  });
  m_waveOut.SetListener([&] {
    log.push_back(dialog.GetItemCount(kTagListId) == 1 ? u"play what is listed" : u"play first");
  });
  dialog.Press(kRecordButtonId);
  EXPECT_THAT(log, ElementsAre(u"find " + std::u16string(storage::kWaveFolder),
                               u"find " + std::u16string(storage::kTemplateFolder),
                               u"find \\Voxtrel Trash\\*", u"find " + storage::WavePath(u"1000"),
                               u"find " + storage::TemplatePath(u"1000"), u"cue after the beep",
                               u"play what is listed"));
}

TEST_F(PageOneOrder, ATagThatCannotBeNamedIsCountedButEnablesNothing) {
  auto& dialog = Open();
  dialog.Press(kRecordButtonId);
  dialog.Choose(kContactComboId, 1);
  m_machine.contacts.SetLookup(kBob, platform::ContactsError::kFailed);
  dialog.Press(kRecordButtonId);
  EXPECT_EQ(m_page->GetTags().tagCount, 2);
  EXPECT_EQ(GetEntries().size(), 2U);
  EXPECT_EQ(dialog.GetItemCount(kTagListId), 1);
  EXPECT_FALSE(dialog.IsEnabled(kTestButtonId));
  EXPECT_EQ(dialog.GetText(kCountLabelId), u"Learned commands: 1");
}

TEST_F(PageOneOrder, TheFirstTagThatCannotBeNamedDoesNotEnableDeleteAll) {
  auto& dialog = Open();
  m_machine.contacts.SetLookup(kAnn, platform::ContactsError::kFailed);
  dialog.Press(kRecordButtonId);
  EXPECT_EQ(m_page->GetTags().tagCount, 1);
  EXPECT_FALSE(dialog.IsEnabled(kDeleteAllButtonId));
}

TEST_F(PageOneOrder, DeleteAllDeletesEveryRecordingBeforeTheFirstTemplate) {
  PutTag(u"100", kAnn, u"Mobile");
  PutTag(u"200", kBob, u"Home");
  auto& dialog = OpenWatched();
  Texts deleted;
  m_files.SetListener([&](const std::u16string& call) {
    if (call.starts_with(u"delete \\Program Files")) {
      deleted.push_back(call.substr(7));
    }
  });
  dialog.Press(kDeleteAllButtonId);
  EXPECT_THAT(deleted, ElementsAre(storage::WavePath(u"100"), storage::WavePath(u"200"),
                                   storage::TemplatePath(u"100"), storage::TemplatePath(u"200")));
}

}  // namespace
