#pragma once

#include "backends/vcard/contact_data.h"
#include "backends/vcard/content_line.h"

namespace vcard {

/// Contact that a card describes.
[[nodiscard]] ContactData ToContactData(const Card& card);

}  // namespace vcard
