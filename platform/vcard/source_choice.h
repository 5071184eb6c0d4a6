#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/registry.h"

namespace vcard {

/// Which address book is used.
struct SourceChoice {
  std::u16string path;  ///< Of a vCard file or folder; empty: the desktop's address books.

  friend bool operator==(const SourceChoice&, const SourceChoice&) = default;
};

/// What the user wrote: "eds" for the desktop's address books, else a path, which is made absolute
/// so that it means the same wherever the system is started the next time.
[[nodiscard]] SourceChoice ParseChoice(std::u16string_view text);

/// Stores the remembered choice in `choice`, or nothing where there is none; false where it cannot
/// be told.
[[nodiscard]] bool RecallChoice(platform::Registry& registry, std::optional<SourceChoice>& choice);

/// False where it cannot be kept.
[[nodiscard]] bool RememberChoice(platform::Registry& registry, const SourceChoice& choice);

}  // namespace vcard
