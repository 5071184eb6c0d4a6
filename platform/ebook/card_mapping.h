#pragma once

#include <libebook-contacts/libebook-contacts.h>

#include <string>

#include "platform/ebook/contact_data.h"

namespace ebook {

/// Contact that a parsed card describes. Reads the attributes themselves, since the library's own
/// fields of a contact pass over labels of Apple's address books, quoted lists of types and
/// preferred mobile numbers.
[[nodiscard]] ContactData ToContactData(EVCard& card);

/// Contact of one card from a VcardSplitter.
[[nodiscard]] ContactData ParseCard(const std::string& card);

}  // namespace ebook
