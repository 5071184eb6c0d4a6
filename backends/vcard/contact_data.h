#pragma once

#include <array>
#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

#include "backends/vcard/telephone_kinds.h"

namespace vcard {

/// What the system knows of one contact.
struct ContactData {
  std::string uid;  ///< As the address book gives it; empty if it gives none.
  std::u16string firstName;
  std::u16string middleName;
  std::u16string lastName;
  std::u16string companyName;
  Numbers numbers;

  struct UnplacedNumber {
    std::u16string number;
    std::size_t line = 0;  ///< Of the stream; 0 if not known.
  };
  std::vector<UnplacedNumber> unplaced;  ///< Numbers of telephones for which there is no kind left.

  /// What ContentOf gives for the names and numbers that the contact had under the former rules.
  /// Empty if that is the same as now. Contacts of old entries are found by it.
  std::string formerContent;
};

/// Stands for a text of any length; no two texts that occur share one. The first half of the
/// SHA-256 of its bytes: what is stored stays good.
using Digest = std::array<std::byte, 16>;

struct DigestHash {
  std::size_t operator()(const Digest& digest) const {
    std::size_t hash = 0;
    std::memcpy(&hash, digest.data(), sizeof hash);
    return hash;
  }
};

/// No text has it.
inline constexpr Digest kNoDigest{};

/// What a contact is recognised by.
struct ContactSigns {
  Digest uid = kNoDigest;      ///< kNoDigest if the card has none.
  Digest name = kNoDigest;     ///< Of the full name; kNoDigest if there is none.
  Digest content = kNoDigest;  ///< Of names, company and numbers.

  friend bool operator==(const ContactSigns&, const ContactSigns&) = default;
};

}  // namespace vcard
