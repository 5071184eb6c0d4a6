#pragma once

#include <optional>

#include "platform/clock.h"
#include "platform/contacts_store.h"
#include "tags/contact_messages.h"

namespace tags {

/// Opens the connection to the contacts, trying three times to get it, 200 ms apart. The message
/// where that failed; the store is to be logged off at the end either way.
[[nodiscard]] std::optional<ContactMessage> OpenContacts(platform::ContactsStore& store,
                                                         platform::Clock& clock);

}  // namespace tags
