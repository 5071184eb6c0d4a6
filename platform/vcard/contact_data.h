#pragma once

#include <string>

#include "platform/vcard/telephone_kinds.h"

namespace vcard {

/// What the system knows of one contact.
struct ContactData {
  std::string uid;  ///< As the address book gives it; empty where it gives none.
  std::u16string firstName;
  std::u16string middleName;
  std::u16string lastName;
  std::u16string companyName;
  Numbers numbers;
};

}  // namespace vcard
