#pragma once

#include <string>
#include <vector>

#include "host/session/session.h"
#include "tags/tag_reader.h"

namespace session {

/// Returns the names of all tags. If a key among them is passed over, since no path can
/// name it, a warning names it.
[[nodiscard]] platform::Result<std::vector<std::u16string>, platform::RegistryError> ListTagNames(
    Session& session);

/// Returns every tag, for a task that changes nothing. If the contacts cannot be read, the tags
/// have their own names, and a warning says why. A tag that has a fault is reported as a failure.
/// The error is the sentence that says why it is not known which tags there are.
[[nodiscard]] platform::Result<std::vector<tags::ListedTag>, std::string> ReadTags(
    Session& session);

/// Reads all tags as one state of the store. Nobody waits for that, since nothing is written. The
/// contacts of `platform` are logged on if it `hasContacts`.
[[nodiscard]] platform::Result<std::vector<tags::ListedTag>, platform::RegistryError> ReadAtOnce(
    const platform::Platform& platform, bool hasContacts);

/// Warns that the contacts cannot be read, and says why.
void WarnOfContacts(Session& session);

/// Reports why one tag, or its contact, cannot be read. Reports nothing if both were. The list has
/// the tag all the same.
void ReportProblem(Session& session, const tags::ListedTag& tag);

}  // namespace session
