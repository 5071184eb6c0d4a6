#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/contacts_store.h"
#include "platform/registry.h"
#include "storage/tag_record.h"
#include "storage/tag_store.h"
#include "tags/contact_messages.h"

namespace tags {

/// A tag as the Learning page lists it, for code that changes nothing.
struct ListedTag {
  std::u16string name;
  storage::TagEntry entry;  ///< Empty if there is an `error`.
  /// The line of the list: the contact with the number. The tag's own name if it is not known whose
  /// tag it is, so that no tag is without a line.
  std::u16string text;
  bool isStale = false;    ///< Its contact does not exist any more: the page would delete it.
  bool hasNumber = false;  ///< False if the line has no number, since the entry names no kind.
  std::optional<platform::RegistryError> error;  ///< Why its entry cannot be read.
  std::optional<ContactMessage> failure;  ///< Why its contact, which is there, cannot be read.
};

/// Returns every tag, in the order of the registry. Differs from the page in one way: if a
/// tag cannot be read or is stale, it does not end the list, is not deleted, and has a line of its
/// own. `contacts` are logged on, or null if they cannot be read; then no tag is stale. Fails if
/// the list of tags cannot be read.
[[nodiscard]] platform::Result<std::vector<ListedTag>, platform::RegistryError> ReadTags(
    const storage::TagStore& store, platform::ContactsStore* contacts);

/// Returns the identifiers of the contacts that tags were recorded for. A change of the address
/// book must not lose them. A tag that names no contact has none, and a key that no path can name
/// is no tag. Fails if some of them are not known.
[[nodiscard]] platform::Result<std::vector<std::int32_t>, platform::RegistryError> FindOidsInUse(
    const storage::TagStore& store);

/// Returns the tags that are not stale, as the pages know them.
[[nodiscard]] storage::TagTable ToTable(const std::vector<ListedTag>& tags);

}  // namespace tags
