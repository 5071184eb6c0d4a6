#pragma once

#include <span>
#include <string>
#include <vector>

#include "platform/vcard/contact_data.h"

namespace vcard {

/// The lasting identifier of each contact of one address book: its own where it has one, else its
/// content, so that a card without one stays the same contact as long as it says the same. Each is
/// given once; a repeated one is told apart by its content, and at last by being the second of its
/// kind.
[[nodiscard]] std::vector<std::string> IdentitiesOf(std::span<const ContactData> contacts);

}  // namespace vcard
