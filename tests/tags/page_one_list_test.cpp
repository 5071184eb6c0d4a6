#include "resources/fault_strings.h"
#include "storage/registry_keys.h"
#include "storage/tag_record.h"
#include "tests/support/half_written.h"
#include "tests/support/results.h"
#include "tests/support/watched_file_system.h"
#include "tests/support/watched_registry.h"
#include "tests/tags/page_fixture.h"

namespace {

using Texts = std::vector<std::u16string>;
using namespace resources;

/// A registry whose keys can be read and, for a time, not be deleted.
class LastingKeys final : public support::WatchedRegistry {
 public:
  using WatchedRegistry::WatchedRegistry;
  platform::Result<void, platform::RegistryError> DeleteKey(std::u16string_view path) override {
    return isLasting ? platform::Failure(platform::RegistryError::kBusy)
                     : WatchedRegistry::DeleteKey(path);
  }
  bool isLasting = true;
};

class PageOneList : public PageFixture {
 protected:
  void Refuse() {
    m_machine.ui.SetAnswerer(
        [](const platform::MessageBox&) { return platform::MessageAnswer::kCancel; });
  }
  /// Reads a file, as the companion dialer does.
  void Hold(const std::u16string& path) {
    m_held = m_machine.files
                 .Open(path, {platform::FileAccess::kRead, platform::FileShare::kRead,
                              platform::FileCreation::kOpenExisting})
                 .value();
    ASSERT_NE(m_held, nullptr);
  }
  /// Has a file for itself alone, so that nobody can even read it.
  void HoldAlone(const std::u16string& path) {
    m_held = m_machine.files.Open(path, {}).value();
    ASSERT_NE(m_held, nullptr);
  }

  /// Before what the page was opened on goes.
  void Close() {
    m_dialog.reset();
    m_page.reset();
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

TEST_F(PageOneList, AHalfWrittenEntryHasALineStaysAndEndsNothing) {
  for (const support::HalfWritten& entry : support::HalfWrittenEntries()) {
    Close();
    static_cast<void>(m_machine.registry.DeleteKey(storage::kTagKey));
    PutTag(u"100", kAnn, u"Mobile");
    entry.write(m_machine.registry, u"200");
    PutTag(u"300", kBob, u"Home");
    const Texts lines = Open().GetItems(kTagListId);
    ASSERT_EQ(lines.size(), entry.isThere ? 3U : 2U) << entry.what;
    EXPECT_EQ(lines.front(), u"Ann Lee 5551234 M");
    EXPECT_EQ(lines.back(), u"Bob Ray 5550001 H");
    if (entry.isThere) {
      EXPECT_EQ(lines[1], !entry.namesContact ? u"200"
                          : entry.namesKind   ? u"Ann Lee 5551234 M"
                                              : u"Ann Lee")
          << entry.what;
      EXPECT_EQ(GetEntries(), (Texts{u"100", u"200", u"300"})) << entry.what;
    }
  }
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
  PutTag(u"100", 999, u"Mobile");
  PutTag(u"200", kAnn, u"Mobile");
  LastingKeys registry(m_machine.registry);
  EXPECT_EQ(OpenOn(m_machine.GetWith(m_machine.files, registry)).GetItemCount(kTagListId), 0);
  EXPECT_EQ(GetMessages(), Texts{u"Error in 33"});
  EXPECT_EQ(GetEntries(), (Texts{u"100", u"200"}));
  Close();
}

TEST_F(PageOneList, AStaleTagThatIsHeldAloneEndsTheLoadToo) {
  PutTag(u"100", 999, u"Mobile");
  HoldAlone(storage::WavePath(u"100"));
  Open();
  m_held.reset();
  HoldAlone(storage::TemplatePath(u"100"));
  Open();
  EXPECT_EQ(GetMessages(), (Texts{u"Error in 11", u"Error in 22"}));
  EXPECT_TRUE(HasFile(storage::WavePath(u"100"))) << "What cannot be copied does not go.";
}

TEST_F(PageOneList, AStaleTagWithoutARecordingHidesNoOther) {
  PutTag(u"100", 999, u"Mobile");
  PutTag(u"200", kAnn, u"Mobile");
  ASSERT_TRUE(m_machine.files.Delete(storage::WavePath(u"100")));
  EXPECT_EQ(Open().GetItems(kTagListId), Texts{u"Ann Lee 5551234 M"});
  EXPECT_EQ(GetEntries(), Texts{u"200"});
  EXPECT_TRUE(GetMessages().empty());
}

TEST_F(PageOneList, AStaleTagThatTheTrashCannotTakeStaysWithoutALine) {
  PutTag(u"100", 999, u"Mobile");
  PutTag(u"200", kAnn, u"Mobile");
  m_machine.files.SetCapacity(0);
  const auto& dialog = Open();
  EXPECT_EQ(dialog.GetItems(kTagListId), Texts{u"Ann Lee 5551234 M"});
  EXPECT_EQ(GetEntries(), (Texts{u"100", u"200"}));
  EXPECT_TRUE(HasFile(storage::WavePath(u"100")));
  EXPECT_EQ(dialog.GetText(kCountLabelId), u"Learned commands: 2");
  EXPECT_TRUE(GetMessages().empty());
}

TEST_F(PageOneList, ATagOfContactsThatAreAwayStaysUnderItsOwnName) {
  PutTag(u"100", kAnn, u"Mobile");
  PutTag(u"200", 999, u"Mobile");
  m_machine.contacts.SetLookup(999, platform::ContactsError::kFailed);
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

TEST_F(PageOneList, DeleteOfATagThatIsHeldAloneChangesNothing) {
  PutTag(u"100", kAnn, u"Mobile");
  auto& dialog = Open();
  for (const std::u16string& path : {storage::WavePath(u"100"), storage::TemplatePath(u"100")}) {
    HoldAlone(path);
    dialog.Choose(kTagListId, 0);
    dialog.Press(kDeleteButtonId);
    EXPECT_EQ(GetMessages().back(), u"The tag is in use. Try to delete it later.");
    m_held.reset();
    EXPECT_TRUE(HasFile(storage::WavePath(u"100")) && HasFile(storage::TemplatePath(u"100")));
  }
  EXPECT_EQ(GetEntries(), Texts{u"100"});
}

TEST_F(PageOneList, DeleteWhoseEntryStaysKeepsTheLineButNotTheRecord) {
  PutTag(u"100", kAnn, u"Mobile");
  PutTag(u"200", kBob, u"Home");
  LastingKeys registry(m_machine.registry);
  auto& dialog = OpenOn(m_machine.GetWith(m_machine.files, registry));
  dialog.Choose(kTagListId, 0);
  dialog.Press(kDeleteButtonId);
  EXPECT_EQ(GetMessages().back(), u"The tag is in use. Try to delete it later.");
  EXPECT_EQ(dialog.GetItemCount(kTagListId), 2);
  EXPECT_EQ(m_page->GetTags().tagCount, 1);
  EXPECT_EQ(m_page->GetTags().GetRecord(0)->GetTagName(), u"200");

  // The line still stands for its tag: a second press finishes the work, and counts nothing twice.
  registry.isLasting = false;
  dialog.Press(kDeleteButtonId);
  EXPECT_EQ(dialog.GetItems(kTagListId), Texts{u"Bob Ray 5550001 H"});
  EXPECT_EQ(GetEntries(), Texts{u"200"});
  EXPECT_EQ(m_page->GetTags().tagCount, 1);
  EXPECT_TRUE(HasFile(storage::WavePath(u"200")) && HasFile(storage::TemplatePath(u"200")));
  Close();
}

TEST_F(PageOneList, AnInterruptedDeleteIsFinishedByASecondPress) {
  PutTag(u"100", kAnn, u"Mobile");
  auto& dialog = Open();
  dialog.Choose(kTagListId, 0);
  Hold(storage::TemplatePath(u"100"));
  dialog.Press(kDeleteButtonId);
  m_held.reset();
  dialog.Press(kDeleteButtonId);
  EXPECT_TRUE(GetEntries().empty());
  EXPECT_EQ(dialog.GetItemCount(kTagListId), 0);
  EXPECT_EQ(m_page->GetTags().tagCount, 0);
}

TEST_F(PageOneList, AMissingRecordingIsNotInUse) {
  PutTag(u"100", kAnn, u"Mobile");
  ASSERT_TRUE(m_machine.files.Delete(storage::WavePath(u"100")));
  auto& dialog = Open();
  dialog.Choose(kTagListId, 0);
  dialog.Press(kDeleteButtonId);
  EXPECT_EQ(GetMessages(), Texts{u"The tag will be deleted!"});
  EXPECT_TRUE(GetEntries().empty());
}

TEST_F(PageOneList, ALineStandsForItsTagAfterAStaleOneWasRemoved) {
  PutTag(u"100", kAnn, u"Mobile");
  PutTag(u"200", 999, u"Mobile");
  auto& dialog = Open();
  dialog.Press(kRecordButtonId);
  dialog.Press(kRecordButtonId);
  const Texts entries = GetEntries();
  ASSERT_EQ(entries.size(), 3U);
  dialog.Choose(kTagListId, 2);
  dialog.Press(kPlayButtonId);
  EXPECT_EQ(m_machine.waveOut.GetPlayed().back().bytes.size() + 44,
            m_machine.files.GetFile(storage::WavePath(entries[2]))->size());
  dialog.Press(kDeleteButtonId);
  EXPECT_EQ(GetEntries(), (Texts{entries[0], entries[1]}));
  EXPECT_TRUE(HasFile(storage::WavePath(entries[1])));
  EXPECT_FALSE(HasFile(storage::WavePath(entries[2])));
}

TEST_F(PageOneList, ALineStandsForItsTagAfterOneThatWasStoredAndNotListed) {
  auto& dialog = Open();
  m_machine.contacts.SetLookup(kAnn, platform::ContactsError::kFailed);
  dialog.Press(kRecordButtonId);
  dialog.Choose(kContactComboId, 1);
  dialog.Press(kRecordButtonId);
  const Texts entries = GetEntries();
  ASSERT_EQ(entries.size(), 2U);
  ASSERT_EQ(dialog.GetItems(kTagListId), Texts{u"Bob Ray 5550001 H"});
  dialog.Choose(kTagListId, 0);
  dialog.Press(kDeleteButtonId);
  EXPECT_EQ(GetEntries(), Texts{entries[0]}) << "The one without a line is still there.";
  EXPECT_EQ(m_page->GetTags().GetRecord(0)->GetTagName(), entries[0]);
  EXPECT_EQ(dialog.GetText(kCountLabelId), u"Learned commands: 1");
}

TEST_F(PageOneList, ALineWhoseEntryCouldNotBeReadStandsForItsTagAsWell) {
  const std::u16string longName(30, u'7');
  PutTag(longName, kAnn, u"Mobile");
  PutTag(u"200", kBob, u"Home");
  auto& dialog = Open();
  dialog.Choose(kTagListId, 0);
  dialog.Press(kDeleteButtonId);
  EXPECT_EQ(GetEntries(), Texts{u"200"}) << "A record holds the first 19 units of a name alone.";
}

TEST_F(PageOneList, WhatIsDeletedGoesToTheTrashUnderItsLine) {
  PutTag(u"100", kAnn, u"Mobile");
  PutTag(u"200", kBob, u"Home");
  PutTag(u"300", 999, u"Home");
  auto& dialog = Open();
  dialog.Choose(kTagListId, 0);
  dialog.Press(kDeleteButtonId);
  dialog.Press(kDeleteAllButtonId);
  const auto tags =
      storage::TagTrash(m_machine.files, m_machine.registry, m_machine.simulation).List().value();
  ASSERT_EQ(tags.size(), 3U);
  EXPECT_EQ(tags[0].item.text, u"Bob Ray 5550001 H");
  EXPECT_EQ(tags[0].item.by, storage::DeletionReason::kDeleteAll);
  EXPECT_EQ(tags[1].item.text, u"Ann Lee 5551234 M");
  EXPECT_EQ(tags[1].item.by, storage::DeletionReason::kDelete);
  EXPECT_EQ(tags[2].item.parts.name, u"300");
  EXPECT_EQ(tags[2].item.by, storage::DeletionReason::kCleanUp);
}

TEST_F(PageOneList, OpeningFinishesADeletionThatWasKilled) {
  PutTag(u"100", kAnn, u"Mobile");
  PutTag(u"200", kBob, u"Home");
  auto& dialog = Open();
  support::WatchedFileSystem failing(m_machine.files);
  const storage::TagTrash trash(failing, m_machine.registry, m_machine.simulation);
  {
    storage::Deletion deletion(trash, storage::DeletionReason::kDelete);
    const auto parts = storage::FindParts(failing, m_machine.registry, u"100");
    ASSERT_TRUE(deletion.Keep(parts.value(), u"Ann Lee 5551234 M"));
    ASSERT_TRUE(failing.Delete(storage::WavePath(u"100")));
    failing.FailCall(1, support::Failing::kPowerFailure);
  }
  ASSERT_TRUE(HasFile(storage::TemplatePath(u"100")));
  EXPECT_EQ(dialog.GetItemCount(kTagListId), 2);
  EXPECT_EQ(Open().GetItems(kTagListId), Texts{u"Bob Ray 5550001 H"});
  EXPECT_EQ(GetEntries(), Texts{u"200"});
  EXPECT_FALSE(HasFile(storage::TemplatePath(u"100")));
}

TEST_F(PageOneList, ATagThatAFullDiskCannotKeepIsDestroyedWithAMessage) {
  PutTag(u"100", kAnn, u"Mobile");
  PutTag(u"200", kBob, u"Home");
  auto& dialog = Open();
  m_machine.files.SetCapacity(0);
  dialog.Choose(kTagListId, 0);
  dialog.Press(kDeleteButtonId);
  EXPECT_EQ(GetMessages(), (Texts{u"The tag will be deleted!", std::u16string(kTagDestroyed)}));
  EXPECT_EQ(GetEntries(), Texts{u"200"});
  dialog.Press(kDeleteAllButtonId);
  EXPECT_EQ(
      GetMessages().back(),
      u"The disk is full: the trash has no room for all that was deleted. Tags that cannot be "
      u"restored: 1");
  EXPECT_TRUE(GetEntries().empty());
}

TEST_F(PageOneList, ATagThatTheTrashCannotTakeIsNotDeleted) {
  PutTag(u"100", kAnn, u"Mobile");
  auto& dialog = Open();
  ASSERT_TRUE(m_machine.files.PutFile(storage::kTrashFolder, {})) << "A file is in its place.";
  dialog.Choose(kTagListId, 0);
  dialog.Press(kDeleteButtonId);
  EXPECT_EQ(GetMessages().back(), kNotKept);
  dialog.Press(kDeleteAllButtonId);
  EXPECT_EQ(GetMessages().back(), kNotKept);
  EXPECT_EQ(GetEntries(), Texts{u"100"});
  EXPECT_TRUE(HasFile(storage::WavePath(u"100")) && HasFile(storage::TemplatePath(u"100")));
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

TEST_F(PageOneList, DeleteAllWhoseSearchFailsSaysErrorAndKeepsEverything) {
  PutTag(u"100", kAnn, u"Mobile");
  PutTag(u"200", kBob, u"Home");
  support::WatchedFileSystem failing(m_machine.files);
  auto& dialog = OpenOn(m_machine.GetWith(failing, m_machine.registry));
  // The trash is looked at first.
  failing.FailCall(2, support::Failing::kOnce);
  dialog.Press(kDeleteAllButtonId);
  const auto messages = m_machine.ui.GetMessages();
  ASSERT_EQ(messages.size(), 2U);
  EXPECT_EQ(messages[1].box.text, u"ERROR");
  EXPECT_EQ(messages[1].box.captionKind, platform::MessageCaption::kNone);
  EXPECT_EQ(messages[1].box.style, platform::MessageStyle::kOk);
  EXPECT_EQ(GetEntries(), (Texts{u"100", u"200"}));
  EXPECT_TRUE(HasFile(storage::WavePath(u"100")) && HasFile(storage::TemplatePath(u"200")));
  EXPECT_EQ(dialog.GetItemCount(kTagListId), 2);
  EXPECT_TRUE(dialog.IsEnabled(kDeleteAllButtonId));
  Close();
}

TEST_F(PageOneList, DeleteAllWhoseKeyStaysKeepsTheList) {
  PutTag(u"100", kAnn, u"Mobile");
  LastingKeys registry(m_machine.registry);
  auto& dialog = OpenOn(m_machine.GetWith(m_machine.files, registry));
  dialog.Press(kDeleteAllButtonId);
  EXPECT_EQ(GetMessages().back(), u"The tag is in use. Try to delete it later.");
  EXPECT_FALSE(HasFile(storage::WavePath(u"100")));
  EXPECT_EQ(dialog.GetItemCount(kTagListId), 1);
  EXPECT_EQ(m_page->GetTags().tagCount, 1);
  registry.isLasting = false;
  dialog.Press(kDeleteAllButtonId);
  EXPECT_TRUE(GetEntries().empty());
  EXPECT_EQ(dialog.GetItemCount(kTagListId), 0);
  Close();
}

TEST_F(PageOneList, DeleteAllOfAListThatWasNotFilledSaysHowManyRecordingsItIsAbout) {
  PutTag(u"100", kAnn, u"Mobile");
  PutTag(u"200", kBob, u"Home");
  m_machine.contacts.FailOpening(machine::SimulatedContacts::Opening::kLogon, 100);
  auto& dialog = Open();
  ASSERT_EQ(dialog.GetItemCount(kTagListId), 0);
  ASSERT_TRUE(dialog.IsEnabled(kDeleteAllButtonId));
  Refuse();
  dialog.Press(kDeleteAllButtonId);
  EXPECT_EQ(GetMessages().back(),
            u"All voice tags will be deleted!\n\nRecordings that will be deleted: 2");
  EXPECT_EQ(GetEntries(), (Texts{u"100", u"200"}));
}

TEST_F(PageOneList, ATagWhoseEntryNamesNoContactIsKeptUnderItsOwnName) {
  PutTag(u"100", kAnn, u"Mobile");
  for (const std::u16string_view contact : {u"", u"nobody", u"99999999999"}) {
    const auto key = m_machine.registry.OpenKey(std::u16string(storage::kTagKey) + u"\\100");
    ASSERT_TRUE(key);
    ASSERT_EQ(support::ErrorOf((*key)->Set(storage::kContactValue, platform::RegistryType::kString,
                                           storage::ToTagValue(contact))),
              std::nullopt);
    const auto& dialog = Open();
    EXPECT_EQ(dialog.GetItems(kTagListId), Texts{u"100"});
    EXPECT_EQ(GetEntries(), Texts{u"100"});
    EXPECT_TRUE(HasFile(storage::WavePath(u"100")) && HasFile(storage::TemplatePath(u"100")));
    Close();
  }
}

}  // namespace
