#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "backends/vcard/contact_source.h"
#include "platform/registry.h"

namespace vcard {

/// Holds the choice of the address book and the numbers of its contacts. It is not the key of the
/// tags, which holds nothing but tags.
inline constexpr std::u16string_view kContactsKey = u"Software\\Zedra\\Voxtrel Contacts";

/// Which address book is used.
struct SourceChoice {
  std::u16string path;  ///< Of a vCard file or folder; empty: the desktop's address books.

  friend bool operator==(const SourceChoice&, const SourceChoice&) = default;
};

/// Returns what the user wrote: "eds" for the desktop's address books, else a path. The path is
/// made absolute, so it means the same in whatever folder the program is started the next time.
[[nodiscard]] SourceChoice ParseChoice(std::u16string_view text);

/// Returns the remembered choice. Returns nothing if there is none. A value of another program that
/// is no choice is named in `remarks` and counts as none. Fails if the registry cannot be asked.
[[nodiscard]] platform::Result<std::optional<SourceChoice>, platform::RegistryError> RecallChoice(
    platform::Registry& registry, std::vector<Remark>& remarks);

/// Writes nothing if this choice is remembered already.
[[nodiscard]] platform::Result<void, platform::RegistryError> RememberChoice(
    platform::Registry& registry, const SourceChoice& choice);

}  // namespace vcard
