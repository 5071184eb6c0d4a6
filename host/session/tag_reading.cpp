#include "host/session/tag_reading.h"

#include <fmt/format.h>

#include <cstddef>
#include <string>

#include "backends/text/say.h"
#include "backends/text/utf.h"
#include "host/session/contact_listing.h"
#include "storage/device_paths.h"
#include "storage/registry_file.h"
#include "storage/registry_keys.h"
#include "tags/contact_reading.h"

// Tags for those who only look. Problems are reported for each tag that has one, and never end the
// list.
namespace session {
namespace {

platform::Result<storage::TagList, platform::RegistryError> ListAtOnce(Session& session) {
  const auto group = platform::RegistryGroup::BeginReading(session.GetRegistry());
  if (!group) {
    return platform::Failure(group.error());
  }
  return storage::TagStore(session.GetFiles(), session.GetRegistry()).ListNames();
}

}  // namespace

platform::Result<std::vector<tags::ListedTag>, platform::RegistryError> ReadAtOnce(
    const platform::Platform& platform, bool hasContacts) {
  // A group is one state of the settings, whatever another process writes meanwhile.
  auto group = platform::RegistryGroup::BeginReading(platform.registry);
  if (!group) {
    return platform::Failure(group.error());
  }
  const storage::TagStore store(platform.files, platform.registry);
  auto tags = tags::ReadTags(store, hasContacts ? &platform.contacts : nullptr);
  if (!tags) {
    return tags;
  }
  if (const auto committed = group->Commit(); !committed) {
    return platform::Failure(committed.error());
  }
  return tags;
}

void ReportProblem(Session& session, const tags::ListedTag& tag) {
  const std::string name = text::ToUtf8(tag.name);
  if (tag.error) {
    session.Fail(
        text::Say(resources::kEntryNotRead, {name, storage::ExplainRegistryError(*tag.error)}));
  } else if (tag.failure) {
    session.Fail(text::Say(resources::kContactOfTagNotRead, {name}));
    // The page's list ends at such a name. Here it has a line, and the user hears of it.
  } else if (name.size() > storage::TagNames::kMaxLength) {
    session.Fail(text::Say(resources::kTagNameTooLong, {name}));
  }
}

void WarnOfContacts(Session& session) {
  session.Warn(text::Say(resources::kTagsWithoutContacts, {ExplainContactsProblem(session)}));
}

platform::Result<std::vector<std::u16string>, platform::RegistryError> ListTagNames(
    Session& session) {
  auto list = ListAtOnce(session);
  if (!list) {
    return platform::Failure(list.error());
  }
  if (list->passedOver > 0) {
    session.Warn(fmt::format("{}: {}", session.GetRegistryName(),
                             session.FindUnusableKey(storage::kTagKey).value_or("")));
  }
  return std::move(list->names);
}

// A task that only reads opens no page, since a page cleans up. So it reads what the page would
// list: first the names alone, because a store without tags needs no address book, which may take
// seconds to answer. Then all tags in one transaction, so that a tag is never listed with half of
// its entry.
platform::Result<std::vector<tags::ListedTag>, std::string> ReadTags(Session& session) {
  const platform::Platform platform = session.GetPlatform();
  const auto names = ListTagNames(session);
  if (!names) {
    return platform::Failure(session.ExplainStore(names.error()));
  }
  if (names->empty()) {
    return {};
  }
  const bool hasContacts = tags::OpenContacts(platform.contacts, platform.clock).has_value();
  auto read = ReadAtOnce(platform, hasContacts);
  if (!hasContacts && read) {
    WarnOfContacts(session);
  }
  platform.contacts.Logoff();
  if (!read) {
    return platform::Failure(session.ExplainStore(read.error()));
  }
  for (const tags::ListedTag& tag : *read) {
    ReportProblem(session, tag);
  }
  return std::move(*read);
}

}  // namespace session
