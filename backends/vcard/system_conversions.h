#pragma once

#include <optional>
#include <string>

namespace vcard {

// What differs from one system to the next: this, and ComputeDigest. Each system has one source
// file with both, and the build chooses it.

struct Converted {
  std::string text;     ///< UTF-8. What is nothing in the set is U+FFFD.
  bool isWhole = true;  ///< Every byte was something in the set.
};

/// Returns `text`, whose bytes are in the set `charset`, in UTF-8. Returns nothing if this system
/// does not know the set.
[[nodiscard]] std::optional<Converted> ConvertBySystem(const std::string& charset,
                                                       std::string text);

}  // namespace vcard
