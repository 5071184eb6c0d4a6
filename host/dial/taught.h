#pragma once

#include <optional>

#include "dialer/taught_tags.h"
#include "host/session/session.h"

namespace dial {

/// Returns what is taught, for a session that is open for reading. Warns of each tag that is passed
/// over, and says what the user can do. Returns nothing, and reports it, if the store cannot be
/// read, or if there are tags and none can be used.
[[nodiscard]] std::optional<dialer::TaughtTags> ReadTaught(session::Session& session);

/// Returns the contacts. Returns null, and warns, if they cannot be read: names are known then by
/// the numbers of their contacts only.
[[nodiscard]] platform::ContactsStore* OpenContacts(session::Session& session);

}  // namespace dial
