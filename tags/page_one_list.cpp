// The Learning page and the list of learned tags: loading, playing, deleting.

#include "language/formatting.h"
#include "resources/dialogs.h"
#include "resources/strings.h"
#include "storage/device_paths.h"
#include "tags/page_one.h"

namespace tags {

void Page_one::LoadTagList() {
  m_tags.Clear();
  m_listText.clear();
  const auto names = m_store.OpenNames();
  if (!names) {
    return;
  }
  std::u16string name;
  while (names->Get(static_cast<std::uint32_t>(m_tags.tagCount), name)) {
    ++m_tags.tagCount;
  }
  // The count is not lowered for stale tags that are removed below, so the label and the Test
  // button count them until the page is opened again.
  std::int32_t slot = 0;
  for (std::uint32_t index = 0; names->Get(index, name);) {
    bool isStale = false;
    if (!LoadTag(name, slot, isStale)) {
      return;
    }
    index += isStale ? 0U : 1U;
  }
}

bool Page_one::LoadTag(std::u16string_view tagName, std::int32_t& slot, bool& isStale) {
  storage::TagEntry entry;
  if (m_store.ReadEntry(tagName, entry) == platform::RegistryError::kNone) {
    std::unique_ptr<platform::Contact> contact;
    const auto lookup = entry.oid ? m_platform.contacts.GetItemFromOid(*entry.oid, contact)
                                  : platform::ContactLookup::kFailed;
    if (lookup == platform::ContactLookup::kAbsent) {
      isStale = true;
      return DeleteStaleTag(tagName);
    }
    TagText tag{.text = std::u16string(tagName), .hasNumber = true, .failure = {}};
    if (lookup == platform::ContactLookup::kFound) {
      tag = ReadForTagList(*contact, entry.phoneType);
    }
    // Where it cannot be told whose tag it is, it keeps its place under its own name, for no tag
    // may be lost because its contacts were away.
    if (tag.failure) {
      Report(*tag.failure);
      return false;
    }
    // The line and the record show the same text, cut where the record's field ends.
    storage::TagRecord shown;
    shown.SetDisplayText(tag.text);
    m_listText = shown.GetDisplayText();
    if (storage::TagRecord* record = m_tags.GetRecord(slot)) {
      record->SetTagName(tagName);
      // Without a number the record stays without a text, although the list has one.
      if (tag.hasNumber) {
        record->SetDisplayText(m_listText);
      }
    }
  }
  // An entry that cannot be read takes a line as well, with the text of the tag before it.
  AppendToList(m_listText);
  ++slot;
  return true;
}

bool Page_one::DeleteStaleTag(std::u16string_view tagName) {
  switch (m_store.Delete(tagName)) {
    case storage::TagDeletion::kDone:
      return true;
    case storage::TagDeletion::kWaveFailed:
      ShowBox(resources::kStaleWaveNotDeleted);
      break;
    case storage::TagDeletion::kTemplateFailed:
      ShowBox(resources::kStaleTemplateNotDeleted);
      break;
    case storage::TagDeletion::kEntryFailed:
      ShowBox(resources::kStaleKeyNotDeleted);
      break;
  }
  return false;
}

void Page_one::AppendToList(std::u16string_view text) {
  GetWindow().AddItem(resources::kTagListId, text);
}

void Page_one::OnPlay() {
  const auto selection = GetWindow().GetSelection(resources::kTagListId);
  const storage::TagRecord* record = selection ? m_tags.GetRecord(*selection) : nullptr;
  if (record != nullptr) {
    m_playCode = m_audio->Play(storage::WavePath(record->GetTagName()));
  }
}

void Page_one::OnDelete() {
  if (!Confirm(resources::kTagWillBeDeleted)) {
    return;
  }
  platform::DialogWindow& window = GetWindow();
  const auto selection = window.GetSelection(resources::kTagListId);
  const storage::TagRecord* record = selection ? m_tags.GetRecord(*selection) : nullptr;
  if (record == nullptr) {
    return;
  }
  const std::u16string tagName(record->GetTagName());
  if (m_store.DeleteWaveFile(tagName) != platform::FileError::kNone ||
      m_store.DeleteTemplateFile(tagName) != platform::FileError::kNone) {
    ShowBox(resources::kTagInUse);
    return;
  }
  m_tags.Remove(*selection);
  if (m_store.DeleteEntry(tagName) != platform::RegistryError::kNone) {
    ShowBox(resources::kTagInUse);
    return;
  }
  window.DeleteItem(resources::kTagListId, *selection);
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

void Page_one::OnDeleteAll() {
  if (!Confirm(resources::kAllTagsWillBeDeleted)) {
    return;
  }
  const auto deleted = m_store.DeleteAll([this](storage::DeletionProblem problem) {
    if (problem == storage::DeletionProblem::kFileInUse) {
      ShowBox(resources::kTagInUse);
    } else {
      m_platform.ui.ShowMessage(
          {u"ERROR", platform::MessageCaption::kNone, {}, platform::MessageStyle::kOk});
    }
  });
  if (deleted != platform::RegistryError::kNone) {
    ShowBox(resources::kTagInUse);
    return;
  }
  m_tags.Clear();
  platform::DialogWindow& window = GetWindow();
  window.ResetItems(resources::kTagListId);
  for (const int button : {resources::kDeleteAllButtonId, resources::kTestButtonId,
                           resources::kPlayButtonId, resources::kDeleteButtonId}) {
    window.Enable(button, false);
  }
  ShowCount();
}

bool Page_one::Confirm(const resources::Text& question) {
  const platform::MessageBox box{
      std::u16string(m_texts(question)), platform::MessageCaption::kText,
      std::u16string(m_texts(resources::kConfirmationCaption)),
      platform::MessageStyle::kOkCancel | platform::MessageStyle::kIconExclamation};
  return m_platform.ui.ShowMessage(box) == platform::MessageAnswer::kOk;
}

void Page_one::ShowBox(const resources::Text& text) {
  m_platform.ui.ShowMessage(platform::ApplicationBox(std::u16string(m_texts(text))));
}

}  // namespace tags
