#pragma once

#include <string>
#include <vector>

#include "host/cli/output.h"
#include "host/cli/session.h"
#include "tags/tag_reader.h"

namespace cli {

/// Returns the names of all tags. If a key among them is passed over, since no path can
/// name it, standard error names it.
[[nodiscard]] platform::Result<std::vector<std::u16string>, platform::RegistryError> ListTagNames(
    Session& session);

/// Stores every tag in `tags` for a command that changes nothing. If the contacts cannot be read
/// the tags have their own names, and standard error says why. Returns false, after reporting it,
/// if it is not known which tags there are. A tag that is not as it should be is reported as well,
/// and makes the exit code 1.
[[nodiscard]] bool ReadTags(Session& session, std::vector<tags::ListedTag>& tags);

/// {"name","contact","phoneType","text","wave","template","stale"}
[[nodiscard]] Json ToJson(const Session& session, const tags::ListedTag& tag);

/// Says on standard error that the contacts cannot be read and why, when that hinders nothing.
void WarnOfContacts(Session& session);

}  // namespace cli
