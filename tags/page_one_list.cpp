// The Learning page and the list of learned tags: loading, playing, deleting.

#include <algorithm>

#include "language/texts.h"
#include "resources/dialogs.h"
#include "resources/fault_strings.h"
#include "resources/strings.h"
#include "resources/translations.h"
#include "storage/device_paths.h"
#include "tags/page_one.h"

namespace tags {

// The count comes first, from the registry alone. Then each entry becomes a line. Three numbers run
// through the loop, and they differ: the index of the entry, which stays if a stale tag was deleted
// there; the slot in the table, which only a line takes; and the count, which includes stale tags.
void Page_one::LoadTagList() {
  m_tags.Clear();
  m_lines.clear();
  m_listText.clear();
  const auto names = m_store.OpenNames();
  if (!names) {
    return;
  }
  while (names->Get(static_cast<std::uint32_t>(m_tags.tagCount))) {
    ++m_tags.tagCount;
  }
  m_cleanUp = std::make_unique<storage::Deletion>(m_trash, storage::DeletionReason::kCleanUp);
  // The count is not lowered for stale tags that are removed below, so the label and the Test
  // button count them until the page is opened again.
  std::int32_t slot = 0;
  LoadedTag loaded = LoadedTag::kListed;
  for (std::uint32_t index = 0; loaded != LoadedTag::kFailed;) {
    const auto name = names->Get(index);
    if (!name) {
      break;
    }
    loaded = LoadTag(*name, slot);
    index += loaded == LoadedTag::kDeleted ? 0U : 1U;
  }
  m_cleanUp.reset();
}

Page_one::LoadedTag Page_one::LoadTag(std::u16string_view tagName, std::int32_t& slot) {
  // Three answers of the contacts differ. The contact is known: the line is made of it. It does not
  // exist any more: the tag is stale and goes. The contacts cannot say: the tag stays.
  if (const auto entry = m_store.ReadEntry(tagName)) {
    const platform::FoundContact contact =
        entry->oid ? m_platform.contacts.GetItemFromOid(*entry->oid)
                   : platform::Failure(platform::ContactsError::kFailed);
    if (!contact && contact.error() == platform::ContactsError::kAbsent) {
      return DeleteStaleTag(tagName);
    }
    // If nobody knows whose tag it is, it keeps its place under its own name: no tag may be lost
    // because its contacts were away.
    const ReadTagText tag = contact ? ReadForTagList(**contact, entry->phoneType)
                                    : TagText{.text = std::u16string(tagName), .hasNumber = true};
    if (!tag) {
      Report(tag.error());
      return LoadedTag::kFailed;
    }
    // The line and the record show the same text, cut at the end of the record's field.
    storage::TagRecord shown;
    shown.SetDisplayText(tag->text);
    m_listText = shown.GetDisplayText();
    if (storage::TagRecord* record = m_tags.GetRecord(slot)) {
      record->SetTagName(tagName);
      // Without a number the record stays without a text, although the list has one.
      if (tag->hasNumber) {
        record->SetDisplayText(m_listText);
      }
    }
  }
  // An entry that cannot be read takes a line as well, with the text of the tag before it.
  AppendToList(m_listText, tagName, slot);
  ++slot;
  return LoadedTag::kListed;
}

Page_one::LoadedTag Page_one::DeleteStaleTag(std::u16string_view tagName) {
  const auto deleted =
      storage::DeleteStaleTag(m_platform.files, m_platform.registry, *m_cleanUp, tagName);
  if (deleted) {
    return LoadedTag::kDeleted;
  }
  switch (deleted.error()) {
    case storage::StaleError::kNotKept:
      return LoadedTag::kPassedOver;
    case storage::StaleError::kRecordingInUse:
      ShowBox(resources::kStaleWaveNotDeleted);
      break;
    case storage::StaleError::kTemplateInUse:
      ShowBox(resources::kStaleTemplateNotDeleted);
      break;
    case storage::StaleError::kEntryFailed:
      ShowBox(resources::kStaleKeyNotDeleted);
      break;
  }
  return LoadedTag::kFailed;
}

void Page_one::AppendToList(std::u16string_view text, std::u16string_view tagName,
                            std::int32_t row) {
  GetWindow().AddItem(resources::kTagListId, text);
  m_lines.push_back({.tagName = std::u16string(tagName), .row = row});
}

std::u16string_view Page_one::GetTagOfLine(std::int32_t line) const {
  const auto index = static_cast<std::size_t>(line);
  return line >= 0 && index < m_lines.size() ? m_lines[index].tagName : std::u16string_view();
}

void Page_one::OnPlay() {
  // A tag is played by its name and not by its row: a tag for which the table has no room can be
  // heard all the same.
  const std::u16string_view tagName =
      GetTagOfLine(GetWindow().GetSelection(resources::kTagListId).value_or(-1));
  if (!tagName.empty()) {
    m_playCode = m_audio->Play(storage::WavePath(tagName));
  }
}

void Page_one::OnDelete() {
  if (!Confirm(m_texts(resources::kTagWillBeDeleted))) {
    return;
  }
  platform::DialogWindow& window = GetWindow();
  const std::int32_t line = window.GetSelection(resources::kTagListId).value_or(-1);
  if (GetTagOfLine(line).empty() || !DeleteTagOfLine(static_cast<std::size_t>(line))) {
    return;
  }
  // The lines and the items of the list box are the same, so each is taken out of both. No item is
  // selected then, so there is none to play or to delete.
  m_lines.erase(m_lines.begin() + line);
  window.DeleteItem(resources::kTagListId, line);
  window.Enable(resources::kPlayButtonId, false);
  window.Enable(resources::kDeleteButtonId, false);
  if (window.GetItemCount(resources::kTagListId) == 0) {
    window.Enable(resources::kDeleteAllButtonId, false);
  }
  if (m_tags.tagCount < 2) {
    window.Enable(resources::kTestButtonId, false);
  }
  // Always English here, whatever language the rest of the page speaks; deliberately kept.
  window.SetText(resources::kCountLabelId, language::EnglishCountLabel(m_tags.tagCount));
}

// Copies first, then the recording, the template, and last the entry: a companion sees no entry
// without both its files. The record and the count go before the entry, deliberately: a press after
// an entry that stayed must not count the tag twice (DropRecord).
bool Page_one::DeleteTagOfLine(std::size_t line) {
  const std::u16string tagName = m_lines[line].tagName;
  // A press that failed half-way before is finished first.
  m_trash.Recover();
  storage::Deletion deletion(m_trash, storage::DeletionReason::kDelete);
  const std::u16string text =
      GetWindow().GetItemText(resources::kTagListId, static_cast<std::int32_t>(line));
  const auto kept =
      storage::FindParts(m_platform.files, m_platform.registry, tagName)
          .map_error([](storage::Unread) { return storage::ItemError::kStoreUnread; })
          .and_then([&](const storage::TagParts& parts) { return deletion.Keep(parts, text); });
  // What cannot be kept is not deleted. The one exception is a disk that is full even without the
  // trash: the user wants room, so the tag goes for good, and a message says so.
  if (kept == platform::Failure(storage::ItemError::kOther) || !deletion.Seal()) {
    ShowBox(resources::Say(resources::kNotKept));
    return false;
  }
  const bool isDestroyed = kept == platform::Failure(storage::ItemError::kFull);
  if (!kept && !isDestroyed) {
    ShowBox(resources::kTagInUse);
    return false;
  }
  if (!m_store.DeleteWaveFile(tagName) || !m_store.DeleteTemplateFile(tagName)) {
    ShowBox(resources::kTagInUse);
    return false;
  }
  DropRecord(line);
  const bool isDeleted = m_store.DeleteEntry(tagName).has_value();
  // In either case, since the files are gone.
  if (isDestroyed) {
    ShowBox(resources::Say(resources::kTagDestroyed));
  }
  if (!isDeleted) {
    ShowBox(resources::kTagInUse);
  }
  return isDeleted;
}

void Page_one::DropRecord(std::size_t line) {
  ListedTag& dropped = m_lines[line];
  if (!dropped.isCounted) {
    return;  // By an earlier press, after which the entry stayed.
  }
  dropped.isCounted = false;
  const std::int32_t count = m_tags.tagCount;
  m_tags.Remove(dropped.row);
  // A tag that there is no room for in the table is counted all the same.
  m_tags.tagCount = count - 1;
  // The rows below have moved up by one.
  for (ListedTag& listed : m_lines) {
    listed.row -= listed.row > dropped.row ? 1 : 0;
  }
}

void Page_one::OnDeleteAll() {
  if (!Confirm(GetDeleteAllQuestion())) {
    return;
  }
  m_trash.Recover();
  const storage::DeletedAll deleted = storage::DeleteAllTags(
      m_platform.files, m_platform.registry, m_trash,
      [this](std::u16string_view tagName) {
        const auto listed = std::ranges::find(m_lines, tagName, &ListedTag::tagName);
        return listed == m_lines.end()
                   ? std::u16string(tagName)
                   : GetWindow().GetItemText(resources::kTagListId,
                                             static_cast<std::int32_t>(listed - m_lines.begin()));
      },
      [this](storage::DeletionProblem problem) { ReportDeletion(problem); });
  if (deleted.destroyedCount > 0) {
    ShowBox(
        language::FormatNumber(resources::Say(resources::kTagsDestroyed), deleted.destroyedCount));
  }
  if (!deleted.isDone) {
    return;
  }
  m_tags.Clear();
  m_lines.clear();
  platform::DialogWindow& window = GetWindow();
  window.ResetItems(resources::kTagListId);
  for (const int button : {resources::kDeleteAllButtonId, resources::kTestButtonId,
                           resources::kPlayButtonId, resources::kDeleteButtonId}) {
    window.Enable(button, false);
  }
  ShowCount();
}

std::u16string Page_one::GetDeleteAllQuestion() {
  std::u16string question(m_texts(resources::kAllTagsWillBeDeleted));
  if (m_isSetUp) {
    return question;
  }
  // Without its list the page does not show what would go.
  const auto contents = storage::ListStore(m_platform.files, m_platform.registry);
  if (contents && contents->failedSearches == 0) {
    const auto hasRecording = [](const storage::TagParts& parts) {
      return !parts.waveFile.empty();
    };
    const auto recordings = std::ranges::count_if(contents->tags, hasRecording) +
                            std::ranges::count_if(contents->orphans, hasRecording);
    question +=
        u"\n\n" + language::FormatNumber(resources::Say(resources::kRecordingsWillBeDeleted),
                                         static_cast<std::int32_t>(recordings));
  }
  return question;
}

void Page_one::ReportDeletion(storage::DeletionProblem problem) {
  switch (problem) {
    case storage::DeletionProblem::kSearchFailed:
      m_platform.ui.ShowMessage(
          {u"ERROR", platform::MessageCaption::kNone, {}, platform::MessageStyle::kOk});
      break;
    case storage::DeletionProblem::kFileInUse:
      ShowBox(resources::kTagInUse);
      break;
    case storage::DeletionProblem::kNotKept:
      ShowBox(resources::Say(resources::kNotKept));
      break;
  }
}

bool Page_one::Confirm(std::u16string_view question) {
  const platform::MessageBox box{
      std::u16string(question), platform::MessageCaption::kText,
      std::u16string(m_texts(resources::kConfirmationCaption)),
      platform::MessageStyle::kOkCancel | platform::MessageStyle::kIconExclamation};
  return m_platform.ui.ShowMessage(box) == platform::MessageAnswer::kOk;
}

void Page_one::ShowBox(const resources::Text& text) { ShowBox(m_texts(text)); }

void Page_one::ShowBox(std::u16string_view text) {
  m_platform.ui.ShowMessage(platform::ApplicationBox(std::u16string(text)));
}

}  // namespace tags
