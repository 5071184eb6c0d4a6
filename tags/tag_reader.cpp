#include "tags/tag_reader.h"

#include <utility>

#include "tags/contact_reading.h"

// What the Learning page would list, read without the page. The page cleans up when it opens, so
// commands that only look at the tags, and the window that shows them, come here.
namespace tags {

using platform::RegistryError;

namespace {

/// As much of a line as its record holds.
std::u16string CutAsRecord(std::u16string_view text) {
  storage::TagRecord record;
  record.SetDisplayText(text);
  return std::u16string(record.GetDisplayText());
}

void ReadContact(platform::ContactsStore& contacts, std::int32_t oid, ListedTag& tag) {
  // Only the answer "there is no such contact" makes a tag stale. If the contacts cannot say, the
  // line keeps the tag's own name.
  const platform::FoundContact contact = contacts.GetItemFromOid(oid);
  if (!contact) {
    tag.isStale = contact.error() == platform::ContactsError::kAbsent;
    return;
  }
  const ReadTagText read = ReadForTagList(**contact, tag.entry.phoneType);
  if (!read) {
    tag.failure = read.error();
    return;
  }
  tag.text = CutAsRecord(read->text);
  tag.hasNumber = read->hasNumber;
}

}  // namespace

platform::Result<std::vector<ListedTag>, RegistryError> ReadTags(
    const storage::TagStore& store, platform::ContactsStore* contacts) {
  auto list = store.ListNames();
  if (!list) {
    return platform::Failure(list.error());
  }
  std::vector<ListedTag> tags;
  for (std::u16string& name : list->names) {
    ListedTag tag;
    // A line begins with what is always known, the tag's name. What can be read takes its place.
    tag.text = CutAsRecord(name);
    tag.hasNumber = true;
    tag.name = std::move(name);
    if (auto entry = store.ReadEntry(tag.name)) {
      tag.entry = std::move(*entry);
    } else {
      tag.error = entry.error();
    }
    if (tag.entry.oid && contacts != nullptr) {
      ReadContact(*contacts, *tag.entry.oid, tag);
    }
    tags.push_back(std::move(tag));
  }
  return tags;
}

platform::Result<std::vector<std::int32_t>, RegistryError> FindOidsInUse(
    const storage::TagStore& store) {
  const auto list = store.ListNames();
  if (!list) {
    return platform::Failure(list.error());
  }
  std::vector<std::int32_t> oids;
  for (const std::u16string& name : list->names) {
    const auto entry = store.ReadEntry(name);
    // A value that is too long to be read names no contact either.
    if (!entry && entry.error() != RegistryError::kInvalid) {
      return platform::Failure(entry.error());
    }
    if (entry && entry->oid) {
      oids.push_back(*entry->oid);
    }
  }
  return oids;
}

storage::TagTable ToTable(const std::vector<ListedTag>& tags) {
  storage::TagTable table;
  for (const ListedTag& tag : tags) {
    if (tag.isStale) {
      continue;
    }
    // A tag for which the table has no room is counted all the same, as on the page.
    if (storage::TagRecord* const record = table.GetRecord(table.tagCount)) {
      record->SetTagName(tag.name);
      // Without a number the record stays without a text, as on the page.
      if (tag.hasNumber) {
        record->SetDisplayText(tag.text);
      }
    }
    ++table.tagCount;
  }
  return table;
}

}  // namespace tags
