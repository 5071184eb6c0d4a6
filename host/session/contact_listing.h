#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "host/session/session.h"
#include "language/texts.h"
#include "platform/result.h"
#include "tags/contact_messages.h"

namespace session {

/// One contact as both combo boxes of the Learning page show it.
struct ListedContact {
  std::int32_t index = 0;  ///< From 1, in the contact combo box.
  std::int32_t oid = 0;
  std::u16string name;
  std::vector<std::u16string> numbers;  ///< In the order of the number combo box.
};

/// Calls `each` with every contact that the page offers, one after the other: all of a hundred
/// thousand together would take as much memory as the address book. The contacts are open. If
/// something hinders that, it is shown in the words of `texts`. Fails if the page would not open.
[[nodiscard]] platform::Result<void, tags::ContactMessage> ListContacts(
    Session& session, const language::Texts& texts,
    const std::function<void(ListedContact contact)>& each);

/// Returns what the latest log-on to the contacts passed over, each as "FILE:LINE: sentence".
[[nodiscard]] std::vector<std::string> DescribeContactRemarks(Session& session);

/// Returns why a log-on to the contacts failed or found none.
[[nodiscard]] std::string ExplainContactsReason(Session& session);

/// Returns the same with what the user can do about it.
[[nodiscard]] std::string ExplainContactsProblem(Session& session);

}  // namespace session
