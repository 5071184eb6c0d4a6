#include "host/cli/commands.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "backends/headless/headless_ui.h"
#include "backends/text/utf.h"
#include "host/cli/output.h"
#include "host/cli/tag_output.h"
#include "host/session/contact_listing.h"
#include "host/session/quality_words.h"
#include "host/session/tag_reading.h"
#include "maintenance/store_check.h"
#include "storage/deletion.h"
#include "storage/folders.h"
#include "storage/registry_keys.h"
#include "storage/tag_store.h"
#include "tags/contact_reading.h"
#include "tags/page_one.h"
#include "tags/tag_reader.h"

namespace cli {
namespace {

using maintenance::ContactsState;
using maintenance::StoreFinding;
using maintenance::StoreProblem;
using platform::RegistryError;

struct CheckedFinding {
  StoreFinding finding;
  std::string description;
  std::string listText;  ///< Of the tag; empty if it is not known.
  bool isRepaired = false;
  std::string reason;  ///< Why it could not be repaired; empty if nothing was tried.
};

/// What could be better about the recording of a tag. Nothing is wrong with the store then.
struct Advice {
  tags::ListedTag tag;
  Json quality;
  std::vector<std::string> sentences;
};

struct CheckedStore {
  std::uint32_t tagCount = 0;
  std::vector<CheckedFinding> findings;
  std::vector<Advice> advice;
};

/// Counts the tags. Returns whether it is known which there are. Adds a finding for what keeps the
/// settings from being read.
bool ReadTags(Session& session, const platform::Platform& platform, CheckedStore& checked) {
  const auto list = storage::TagStore(platform.files, platform.registry).ListNames();
  const std::optional<std::string> key = session.FindUnusableKey();
  if (!list || key) {
    // If the store answers, such a key alone is to blame.
    const RegistryError error = list ? RegistryError::kInvalid : list.error();
    checked.findings.push_back({{StoreProblem::kRegistryUnreadable, {}, {}},
                                fmt::format("{}: {}", Describe(StoreProblem::kRegistryUnreadable),
                                            session.ExplainStore(error)),
                                "",
                                false,
                                ""});
  }
  checked.tagCount = list ? static_cast<std::uint32_t>(list->names.size()) : 0;
  // Among the tags nobody knows what such a key means, nor which files belong to it.
  return list && key.value_or("").find(text::ToUtf8(storage::kTagKey) + '\\') == std::string::npos;
}

/// Returns what the list shows for the tag, as long as the contacts are open.
std::string ReadListText(const platform::Platform& platform, const std::u16string& tag) {
  const auto entry = storage::TagStore(platform.files, platform.registry).ReadEntry(tag);
  if (tag.empty() || !entry || !entry->oid) {
    return "";
  }
  const auto contact = platform.contacts.GetItemFromOid(*entry->oid);
  const auto read = contact ? tags::ReadForTagList(**contact, entry->phoneType) : tags::TagText{};
  return read ? text::ToUtf8(read->text) : "";
}

/// Judges the tags whose recordings the check found nothing wrong with. `contacts` is null if they
/// are away. Reports a tag that the check could read and that cannot be read now.
std::vector<Advice> FindAdvice(Session& session, const platform::Platform& platform,
                               platform::ContactsStore* contacts,
                               const std::vector<CheckedFinding>& findings) {
  const auto tags = tags::ReadTags(storage::TagStore(platform.files, platform.registry), contacts);
  if (!tags) {
    if (findings.empty()) {
      session.Fail(Describe(StoreProblem::kRegistryUnreadable));
    }
    return {};
  }
  const std::vector<maintenance::JudgedTag> judged = session::ToJudged(*tags);
  const auto qualities = maintenance::JudgeTags(platform, judged);
  std::vector<Advice> advice;
  for (std::size_t i = 0; i < tags->size(); ++i) {
    const bool isFault = std::ranges::any_of(findings, [&](const CheckedFinding& checked) {
      const StoreProblem problem = checked.finding.problem;
      return checked.finding.tag == (*tags)[i].name && (problem == StoreProblem::kRecordingEmpty ||
                                                        problem == StoreProblem::kRecordingSilent);
    });
    const bool isFound = std::ranges::any_of(findings, [&](const CheckedFinding& checked) {
      return checked.finding.tag == (*tags)[i].name;
    });
    if (!isFound) {
      session::ReportProblem(session, (*tags)[i]);
    }
    if (!isFound && qualities[i].hasUnreadFile) {
      session::ReportUnjudged(session, (*tags)[i]);
    }
    if (!isFault && qualities[i].HasVerdicts()) {
      advice.push_back({(*tags)[i], QualityToJson(qualities[i], judged),
                        session::DescribeAll(qualities[i], *tags)});
    }
  }
  return advice;
}

CheckedStore FindProblems(Session& session, const platform::Platform& platform) {
  CheckedStore checked;
  if (!ReadTags(session, platform, checked)) {
    return checked;
  }
  const bool hasTags = checked.tagCount > 0;
  const bool isAway = hasTags && !tags::OpenContacts(platform.contacts, platform.clock);
  if (isAway) {
    checked.findings.push_back({{StoreProblem::kContactsAway, {}, {}},
                                fmt::format("{}: {}", Describe(StoreProblem::kContactsAway),
                                            session::ExplainContactsProblem(session)),
                                "",
                                false,
                                ""});
  }
  const bool isOpen = hasTags && !isAway;
  const ContactsState contacts = isOpen ? ContactsState::kOpen : ContactsState::kAway;
  for (StoreFinding& finding : CheckStore(platform, contacts)) {
    std::string listText = isOpen ? ReadListText(platform, finding.tag) : "";
    std::string description(Describe(finding.problem));
    if (!finding.folder.empty()) {
      description += ": " + session.ToHostPath(finding.folder);
    }
    checked.findings.push_back({finding, std::move(description), std::move(listText), false, ""});
  }
  if (hasTags) {
    checked.advice =
        FindAdvice(session, platform, isOpen ? &platform.contacts : nullptr, checked.findings);
  }
  platform.contacts.Logoff();
  return checked;
}

void PrintFindingsAsJson(Session& session, const CheckedStore& checkedStore) {
  Json list = Json::array();
  for (const CheckedFinding& checked : checkedStore.findings) {
    list.push_back({{"problem", ToWord(checked.finding.problem)},
                    {"tag", text::ToUtf8(checked.finding.tag)},
                    {"listText", checked.listText},
                    {"text", checked.description},
                    {"repaired", checked.isRepaired}});
    if (!checked.finding.folder.empty()) {
      list.back()["folder"] = session.ToHostPath(checked.finding.folder);
    }
    if (!checked.reason.empty()) {
      list.back()["reason"] = checked.reason;
    }
  }
  Json advice = Json::array();
  for (const Advice& each : checkedStore.advice) {
    advice.push_back({{"tag", text::ToUtf8(each.tag.name)},
                      {"listText", text::ToUtf8(each.tag.text)},
                      {"quality", each.quality},
                      {"text", each.sentences}});
  }
  session.SetJson({{"tags", checkedStore.tagCount}, {"findings", list}, {"advice", advice}});
}

void PrintAdvice(const std::vector<Advice>& advice) {
  for (const Advice& each : advice) {
    const std::string name = text::ToUtf8(each.tag.name);
    const std::string text = text::ToUtf8(each.tag.text);
    for (const std::string& sentence : each.sentences) {
      PrintLine(fmt::format("Advice: {}{}: {}", name,
                            text == name ? "" : fmt::format(" ({})", text), sentence));
    }
  }
}

void PrintFindings(Session& session, const CheckedStore& checkedStore) {
  const auto& [tagCount, findings, advice] = checkedStore;
  if (session.GetOptions().json) {
    PrintFindingsAsJson(session, checkedStore);
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
    PrintLine(tagCount > 0 ? "Nothing is wrong with the voice tags."
                           : fmt::format("There are no voice tags in {}.",
                                         session.GetRegistryPath().parent_path().native()));
  }
  PrintAdvice(advice);
}

void RemoveOrphans(const platform::Platform& platform, std::vector<CheckedFinding>& findings) {
  const auto isOrphan = [](const CheckedFinding& checked) {
    return IsOrphan(checked.finding.problem);
  };
  if (std::ranges::none_of(findings, isOrphan)) {
    return;
  }
  const storage::TagTrash trash(platform.files, platform.registry, platform.clock);
  const std::vector<std::u16string> gone =
      storage::DeleteOrphans(platform.files, platform.registry, trash);
  for (CheckedFinding& checked : findings) {
    if (isOrphan(checked)) {
      checked.isRepaired = std::ranges::find(gone, checked.finding.tag) != gone.end();
      checked.reason = checked.isRepaired ? "" : "the file is in use, or the trash cannot take it";
    }
  }
}

std::string Describe(storage::StaleError error) {
  switch (error) {
    case storage::StaleError::kRecordingInUse:
      return "the recording is in use";
    case storage::StaleError::kTemplateInUse:
      return "the template is in use";
    case storage::StaleError::kEntryFailed:
      return "the entry cannot be deleted";
    case storage::StaleError::kNotKept:
      break;
  }
  return "the trash cannot take the tag";
}

/// Moves the tags whose contacts have gone to the trash, as the page does when it opens.
void CleanUp(const platform::Platform& platform, std::vector<CheckedFinding>& findings) {
  const storage::TagTrash trash(platform.files, platform.registry, platform.clock);
  storage::Deletion cleanUp(trash, storage::DeletionReason::kCleanUp);
  for (const CheckedFinding& stale : findings) {
    if (stale.finding.problem != StoreProblem::kContactGone) {
      continue;
    }
    const std::u16string& tag = stale.finding.tag;
    const auto deleted = DeleteStaleTag(platform.files, platform.registry, cleanUp, tag);
    for (CheckedFinding& checked : findings) {
      if (checked.finding.tag == tag && (deleted || &checked == &stale)) {
        checked.isRepaired = deleted.has_value();
        checked.description += checked.isRepaired ? "; the tag is in the trash now" : "";
        checked.reason = deleted ? "" : Describe(deleted.error());
      }
    }
  }
}

// The order matters. Tags of deleted contacts go first, since their templates need no repair any
// more. Orphans go last, since a folder or a template that was made again may have ended being one.
void Repair(const platform::Platform& platform, CheckedStore& checked) {
  CleanUp(platform, checked.findings);
  if (checked.tagCount > 0) {
    // If this fails, each template that needs a folder reports it.
    storage::CreateInstallFolders(platform.files);
    storage::CreateDataFolders(platform.files);
  }
  for (CheckedFinding& found : checked.findings) {
    if (!found.isRepaired && IsRepairable(found.finding.problem)) {
      const auto result = maintenance::RepairTemplate(platform, found.finding.tag);
      found.isRepaired = result.has_value();
      found.reason = result ? "" : Describe(result.error());
    }
  }
  RemoveOrphans(platform, checked.findings);
}

}  // namespace

void CheckTags(Session& session, bool isRepair) {
  const bool mayRepair = isRepair && session.HasRootFolder();  // A repair makes none.
  if (!(mayRepair ? session.OpenForChanging() : session.OpenForReading())) {
    return;
  }
  const platform::Platform own = session.GetPlatform();
  // A look at the tags waits for nobody, and keeps nobody from changing them.
  const platform::CreatedMutex hold =
      mayRepair ? own.threads.CreateNamedMutex(tags::kInstanceMutex) : platform::CreatedMutex{};
  if (hold == platform::Failure(platform::ThreadError::kHeld)) {
    session.Fail("the tags are in use by another Voxtrel; close it and try again");
    return;
  }
  headless::HeadlessUi silent;
  const platform::Platform platform{own.files, own.waveIn,   own.clock,    own.threads, own.process,
                                    silent,    own.registry, own.contacts, own.waveOut, own.shell};
  if (mayRepair) {
    // What a killed deletion left is no finding: it is finished or undone.
    storage::TagTrash(platform.files, platform.registry, platform.clock).Recover();
  }
  CheckedStore checked = FindProblems(session, platform);
  if (mayRepair) {
    Repair(platform, checked);
  }
  PrintFindings(session, checked);
  const auto left = std::ranges::count(checked.findings, false, &CheckedFinding::isRepaired);
  if (left > 0) {
    session.Fail(
        fmt::format("there {}", left == 1 ? "is 1 problem" : fmt::format("are {} problems", left)));
  }
}

}  // namespace cli
