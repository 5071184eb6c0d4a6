#include "host/cli/tag_reading.h"

#include <fmt/format.h>

#include <cstddef>
#include <string>

#include "backends/text/utf.h"
#include "host/cli/contacts_commands.h"
#include "storage/device_paths.h"
#include "storage/registry_file.h"
#include "storage/registry_keys.h"
#include "tags/contact_opening.h"

namespace cli {
namespace {

using platform::RegistryError;

/// Reads all tags as one state of the store. Nobody waits for that, since nothing is written.
RegistryError ReadAtOnce(const platform::Platform& platform, bool hasContacts,
                         std::vector<tags::ListedTag>& tags) {
  platform::RegistryGroup group(platform.registry);
  if (group.BeginError() != RegistryError::kNone) {
    return group.BeginError();
  }
  const storage::TagStore store(platform.files, platform.registry);
  const RegistryError error =
      tags::ReadTags(store, hasContacts ? &platform.contacts : nullptr, tags);
  return error == RegistryError::kNone ? group.Commit() : error;
}

void ReportProblem(Session& session, const tags::ListedTag& tag) {
  const std::string name = text::ToUtf8(tag.name);
  if (tag.error != RegistryError::kNone) {
    session.Fail(fmt::format("the entry of tag {} cannot be read: {}", name,
                             storage::ExplainRegistryError(tag.error)));
  } else if (tag.failure) {
    session.Fail(fmt::format("the contact of tag {} cannot be read", name));
  } else if (name.size() > storage::TagNames::kMaxLength) {
    session.Fail(
        fmt::format("the name {} is too long for a tag; the list of the window ends there", name));
  }
}

}  // namespace

void WarnOfContacts(Session& session) {
  PrintErrorLine("voxtrel: the tags are used without their contacts: " +
                 ExplainContactsProblem(session));
}

RegistryError ListTagNames(Session& session, std::vector<std::u16string>& names) {
  std::size_t passedOver = 0;
  const RegistryError error =
      storage::TagStore(session.GetFiles(), session.GetRegistry()).ListNames(names, &passedOver);
  if (error == RegistryError::kNone && passedOver > 0) {
    PrintErrorLine(fmt::format("voxtrel: {}: {}", session.GetRegistryPath().native(),
                               session.FindUnusableKey(storage::kTagKey)));
  }
  return error;
}

bool ReadTags(Session& session, std::vector<tags::ListedTag>& tags) {
  const platform::Platform platform = session.GetPlatform();
  std::vector<std::u16string> names;
  RegistryError error = ListTagNames(session, names);
  if (error == RegistryError::kNone && !names.empty()) {
    const bool hasContacts = !tags::OpenContacts(platform.contacts, platform.clock);
    error = ReadAtOnce(platform, hasContacts, tags);
    if (!hasContacts && error == RegistryError::kNone) {
      WarnOfContacts(session);
    }
    platform.contacts.Logoff();
  }
  if (error != RegistryError::kNone) {
    session.Fail(session.ExplainStore(error));
    return false;
  }
  for (const tags::ListedTag& tag : tags) {
    ReportProblem(session, tag);
  }
  return true;
}

Json ToJson(const Session& session, const tags::ListedTag& tag) {
  return {{"name", text::ToUtf8(tag.name)},
          {"contact", tag.entry.oid ? Json(*tag.entry.oid) : Json()},
          {"phoneType", text::ToUtf8(tag.entry.phoneType)},
          {"text", text::ToUtf8(tag.text)},
          {"wave", session.ToHostPath(storage::WavePath(tag.name))},
          {"template", session.ToHostPath(storage::TemplatePath(tag.name))},
          {"stale", tag.isStale}};
}

}  // namespace cli
