#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "backends/vcard/telephone_kinds.h"

namespace vcard {

/// What the system knows of one contact.
struct ContactData {
  std::string uid;  ///< As the address book gives it; empty where it gives none.
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

  /// The same text as ContentOf gives, of the names and numbers that the contact had under the
  /// former rules; empty if those give the same. Contacts of old entries are found by it.
  std::string formerContent;
};

}  // namespace vcard
