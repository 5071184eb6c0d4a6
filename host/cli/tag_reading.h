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

/// Returns every tag, for a command that changes nothing. If the contacts cannot be read, the tags
/// have their own names, and standard error says why. A tag that has a fault is reported, and makes
/// the exit code 1. The error is the sentence that says why it is not known which tags there are.
[[nodiscard]] platform::Result<std::vector<tags::ListedTag>, std::string> ReadTags(
    Session& session);

/// {"name","contact","phoneType","text","wave","template","stale"}
[[nodiscard]] Json ToJson(const Session& session, const tags::ListedTag& tag);

/// Says on standard error that the contacts cannot be read and why, when that hinders nothing.
void WarnOfContacts(Session& session);

/// Reports why one tag, or its contact, cannot be read. Reports nothing if both were. The list has
/// the tag all the same.
void ReportProblem(Session& session, const tags::ListedTag& tag);

}  // namespace cli
