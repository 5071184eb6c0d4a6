#include "host/cli/maintenance_check.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <variant>
#include <vector>

#include "host/cli/contacts_commands.h"
#include "host/cli/output.h"
#include "maintenance/store_check.h"
#include "maintenance/template_repair.h"
#include "platform/headless/headless_ui.h"
#include "platform/headless/memory_registry.h"
#include "platform/posix/posix_threads.h"
#include "platform/text/utf.h"
#include "storage/folders.h"
#include "storage/registry_file.h"
#include "storage/registry_keys.h"
#include "storage/tag_store.h"
#include "tags/contact_opening.h"
#include "tags/contact_reading.h"
#include "tags/page_one.h"

namespace cli {
namespace {

using maintenance::ContactsState;
using maintenance::StoreFinding;
using maintenance::StoreProblem;
using platform::RegistryError;

RegistryError CopyRegistry(platform::Registry& from, platform::Registry& to) {
  std::vector<std::byte> file;
  if (const RegistryError error = storage::WriteRegistryFile(from, file);
      error != RegistryError::kNone) {
    return error;
  }
  const auto read = storage::ParseRegistryFile(file);
  const auto* changes = std::get_if<std::vector<storage::RegistryChange>>(&read);
  return changes == nullptr || storage::ApplyRegistryChanges(to, *changes) ? RegistryError::kOther
                                                                           : RegistryError::kNone;
}

/// Has the session go on with a copy of its settings, since logging on to contacts notes those that
/// are new, and which ones were asked for. Settings that do not exist are not made. Returns why
/// they cannot be read; empty where they can.
std::string UseCopyOfRegistry(Session& session) {
  auto copy = std::make_unique<headless::MemoryRegistry>();
  std::error_code ignored;
  std::string reason;
  if (std::filesystem::exists(session.GetRegistryPath(), ignored)) {
    const RegistryError error = CopyRegistry(session.GetRegistry(), *copy);
    if (error != RegistryError::kNone) {
      const std::string key = session.FindUnusableKey();
      reason = key.empty() ? storage::ExplainRegistryError(error) : key;
    }
  }
  session.UseRegistry(std::move(copy));
  return reason;
}

struct CheckedFinding {
  StoreFinding finding;
  std::string description;
  std::string listText;  ///< Of the tag; empty where it is not known.
  bool isRepaired = false;
  std::string reason;  ///< Why it could not be repaired; empty where nobody tried.
};

std::uint32_t CountTags(platform::Registry& registry) {
  const platform::OpenedKey tags = registry.OpenKey(storage::kTagKey);
  std::u16string name;
  std::uint32_t count = 0;
  while (tags.key && tags.key->EnumerateSubkey(count, name) == RegistryError::kNone) {
    ++count;
  }
  return count;
}

/// What the list shows for the tag, as long as the contacts are open.
std::string ReadListText(const platform::Platform& platform, const std::u16string& tag) {
  storage::TagEntry entry;
  std::unique_ptr<platform::Contact> contact;
  const storage::TagStore store(platform.files, platform.registry);
  const bool isFound =
      !tag.empty() && store.ReadEntry(tag, entry) == RegistryError::kNone && entry.oid &&
      platform.contacts.GetItemFromOid(*entry.oid, contact) == platform::ContactLookup::kFound;
  return isFound ? text::ToUtf8(tags::ReadForTagList(*contact, entry.phoneType).text) : "";
}

std::vector<CheckedFinding> FindProblems(Session& session, const platform::Platform& platform) {
  std::vector<CheckedFinding> findings;
  const bool hasTags = CountTags(platform.registry) > 0;
  const bool isAway = hasTags && tags::OpenContacts(platform.contacts, platform.clock);
  if (isAway) {
    findings.push_back({{StoreProblem::kContactsAway, {}},
                        fmt::format("{}: {}", Describe(StoreProblem::kContactsAway),
                                    ExplainContactsProblem(session)),
                        "",
                        false,
                        ""});
  }
  const bool isOpen = hasTags && !isAway;
  const ContactsState contacts = isOpen ? ContactsState::kOpen : ContactsState::kAway;
  for (StoreFinding& finding : CheckStore(platform, contacts)) {
    std::string listText = isOpen ? ReadListText(platform, finding.tag) : "";
    findings.push_back(
        {finding, std::string(Describe(finding.problem)), std::move(listText), false, ""});
  }
  platform.contacts.Logoff();
  return findings;
}

void PrintFindingsAsJson(const std::vector<CheckedFinding>& findings, std::uint32_t tagCount) {
  Json list = Json::array();
  for (const CheckedFinding& checked : findings) {
    list.push_back({{"problem", ToWord(checked.finding.problem)},
                    {"tag", text::ToUtf8(checked.finding.tag)},
                    {"listText", checked.listText},
                    {"text", checked.description},
                    {"repaired", checked.isRepaired}});
    if (!checked.reason.empty()) {
      list.back()["reason"] = checked.reason;
    }
  }
  PrintJson({{"tags", tagCount}, {"findings", list}});
}

void PrintFindings(Session& session, const std::vector<CheckedFinding>& findings,
                   std::uint32_t tagCount) {
  if (session.GetOptions().json) {
    PrintFindingsAsJson(findings, tagCount);
    return;
  }
  for (const CheckedFinding& checked : findings) {
    std::string tag = text::ToUtf8(checked.finding.tag);
    if (!checked.listText.empty()) {
      tag += " (" + checked.listText + ")";
    }
    PrintLine(fmt::format("{}{}{} [{}]{}{}{}", tag, tag.empty() ? "" : ": ", checked.description,
                          ToWord(checked.finding.problem), checked.isRepaired ? " repaired" : "",
                          checked.reason.empty() ? "" : " not repaired: ", checked.reason));
  }
  if (findings.empty()) {
    PrintLine(tagCount > 0 ? "All voice tags are as they should be."
                           : fmt::format("There are no voice tags in {}.",
                                         session.GetRegistryPath().parent_path().native()));
  }
}

void Repair(const platform::Platform& platform, std::vector<CheckedFinding>& findings) {
  if (CountTags(platform.registry) > 0) {
    // What fails here each template that needs it tells.
    storage::CreateInstallFolders(platform.files);
    storage::CreateDataFolders(platform.files);
  }
  for (CheckedFinding& checked : findings) {
    if (IsRepairable(checked.finding.problem)) {
      const auto result = maintenance::RepairTemplate(platform, checked.finding.tag);
      checked.isRepaired = result == maintenance::RepairResult::kDone;
      checked.reason = Describe(result);
    }
  }
}

/// Keeps others from changing tags while they are looked at.
class TagsHold {
 public:
  /// A look makes no mutex where nobody ever did; a repair does, but no folder for it.
  TagsHold(Session& session, bool isRepair) : m_folder(session.GetRegistryPath().parent_path()) {
    std::error_code ignored;
    m_isMade = std::filesystem::is_directory(m_folder, ignored) && (isRepair || WasMade());
    if (m_isMade) {
      m_mutex = session.GetPlatform().threads.CreateNamedMutex(tags::kInstanceMutex);
    }
  }

  /// Whether somebody else has the tags, or has come since.
  [[nodiscard]] bool IsBroken() const { return m_mutex.existed || (!m_isMade && WasMade()); }

 private:
  [[nodiscard]] bool WasMade() const {
    return posix::PosixThreads::WasNamedMutexMade(m_folder.native(), tags::kInstanceMutex);
  }

  std::filesystem::path m_folder;
  bool m_isMade = false;
  platform::CreatedMutex m_mutex;
};

/// Tells it, where it is so.
bool IsBroken(Session& session, const TagsHold& hold) {
  const bool isBroken = hold.IsBroken();
  if (isBroken) {
    session.Fail("the tags are in use by another Voxtrel; close it and try again");
  }
  return isBroken;
}

}  // namespace

void CheckTags(Session& session, bool isRepair) {
  if (!session.RequireRoot()) {
    return;
  }
  const TagsHold hold(session, isRepair);
  if (IsBroken(session, hold)) {
    return;
  }
  const std::string unread = UseCopyOfRegistry(session);
  const platform::Platform own = session.GetPlatform();
  headless::HeadlessUi silent;
  const platform::Platform platform{own.files, own.waveIn,   own.clock,    own.threads, own.process,
                                    silent,    own.registry, own.contacts, own.waveOut, own.shell};
  std::vector<CheckedFinding> findings;
  if (unread.empty()) {
    findings = FindProblems(session, platform);
  } else {
    // Nobody can tell which tags there are, nor which files belong to one.
    findings.push_back({{StoreProblem::kRegistryUnreadable, {}},
                        fmt::format("{}: {}: {}", Describe(StoreProblem::kRegistryUnreadable),
                                    session.GetRegistryPath().native(), unread),
                        "",
                        false,
                        ""});
  }
  if (isRepair) {
    Repair(platform, findings);
  }
  if (IsBroken(session, hold)) {
    return;
  }
  PrintFindings(session, findings, CountTags(platform.registry));
  const auto left = std::ranges::count(findings, false, &CheckedFinding::isRepaired);
  if (left > 0) {
    session.Fail(fmt::format(
        "{} {}", left,
        left == 1 ? "thing is not as it should be" : "things are not as they should be"));
  }
}

}  // namespace cli
