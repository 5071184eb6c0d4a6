#pragma once

#include "platform/vcard/contact_data.h"
#include "platform/vcard/content_line.h"

namespace vcard {

/// Contact that a card describes.
[[nodiscard]] ContactData ToContactData(const Card& card);

}  // namespace vcard
