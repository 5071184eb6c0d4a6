#include "host/session/store_checking.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "backends/headless/headless_ui.h"
#include "backends/text/say.h"
#include "backends/text/utf.h"
#include "host/session/contact_listing.h"
#include "host/session/held_tags.h"
#include "host/session/quality_words.h"
#include "host/session/tag_reading.h"
#include "storage/deletion.h"
#include "storage/folders.h"
#include "storage/registry_keys.h"
#include "storage/tag_store.h"
#include "tags/contact_reading.h"
#include "tags/tag_reader.h"

// The check of the store for people: findings with the text that the list shows for each tag,
// advice on recordings, and the repair. The command line and the window show the same findings.
namespace session {
namespace {

using maintenance::ContactsState;
using maintenance::StoreFinding;
using maintenance::StoreProblem;
using platform::RegistryError;

/// Counts the tags. Returns whether it is known which there are. Adds a finding for what keeps the
/// settings from being read.
bool CountTags(Session& session, const platform::Platform& platform, CheckedStore& checked) {
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
void FindAdvice(Session& session, const platform::Platform& platform,
                platform::ContactsStore* contacts, CheckedStore& checked) {
  auto tags = tags::ReadTags(storage::TagStore(platform.files, platform.registry), contacts);
  if (!tags) {
    if (checked.findings.empty()) {
      session.Fail(Describe(StoreProblem::kRegistryUnreadable));
    }
    return;
  }
  checked.tags = std::move(*tags);
  auto qualities = maintenance::JudgeTags(platform, ToJudged(checked.tags));
  for (std::size_t i = 0; i < checked.tags.size(); ++i) {
    const tags::ListedTag& tag = checked.tags[i];
    const auto isOfTag = [&tag](const CheckedFinding& found) {
      return found.finding.tag == tag.name;
    };
    // A recording that the check has found empty or silent needs no second sentence that says it is
    // soft.
    const bool isFault = std::ranges::any_of(checked.findings, [&](const CheckedFinding& found) {
      const StoreProblem problem = found.finding.problem;
      return isOfTag(found) && (problem == StoreProblem::kRecordingEmpty ||
                                problem == StoreProblem::kRecordingSilent);
    });
    const bool isFound = std::ranges::any_of(checked.findings, isOfTag);
    if (!isFound) {
      ReportProblem(session, tag);
    }
    if (!isFound && qualities[i].hasUnreadFile) {
      ReportUnjudged(session, tag);
    }
    if (!isFault && qualities[i].HasVerdicts()) {
      auto sentences = DescribeAll(qualities[i], checked.tags);
      checked.advice.push_back({i, std::move(qualities[i]), std::move(sentences)});
    }
  }
}

CheckedStore FindProblems(Session& session, const platform::Platform& platform) {
  CheckedStore checked;
  if (!CountTags(session, platform, checked)) {
    return checked;
  }
  const bool hasTags = checked.tagCount > 0;
  // A store without tags asks nobody: the desktop's address books may take seconds to answer.
  const bool isAway = hasTags && !tags::OpenContacts(platform.contacts, platform.clock);
  if (isAway) {
    checked.findings.push_back({{StoreProblem::kContactsAway, {}, {}},
                                fmt::format("{}: {}", Describe(StoreProblem::kContactsAway),
                                            ExplainContactsProblem(session)),
                                "",
                                false,
                                ""});
  }
  const bool isOpen = hasTags && !isAway;
  const ContactsState contacts = isOpen ? ContactsState::kOpen : ContactsState::kAway;
  for (StoreFinding& finding : CheckStore(platform, contacts)) {
    // Asked now, since the contacts are logged off before the findings are shown.
    std::string listText = isOpen ? ReadListText(platform, finding.tag) : "";
    std::string description(Describe(finding.problem));
    if (!finding.folder.empty()) {
      description += ": " + session.ToHostPath(finding.folder);
    }
    checked.findings.push_back({finding, std::move(description), std::move(listText), false, ""});
  }
  if (hasTags) {
    FindAdvice(session, platform, isOpen ? &platform.contacts : nullptr, checked);
  }
  platform.contacts.Logoff();
  return checked;
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
      // One deletion takes all orphans, so what is gone is looked up by name afterwards.
      checked.isRepaired = std::ranges::find(gone, checked.finding.tag) != gone.end();
      checked.reason = checked.isRepaired ? "" : text::Say(resources::kOrphanStays);
    }
  }
}

std::string Describe(storage::StaleError error) {
  switch (error) {
    case storage::StaleError::kRecordingInUse:
      return text::Say(resources::kStaleRecordingInUse);
    case storage::StaleError::kTemplateInUse:
      return text::Say(resources::kStaleTemplateInUse);
    case storage::StaleError::kEntryFailed:
      return text::Say(resources::kStaleEntryStays);
    case storage::StaleError::kNotKept:
      break;
  }
  return text::Say(resources::kTrashTakesNoTag);
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
        checked.description += checked.isRepaired ? text::Say(resources::kTagIsInTrashNow) : "";
        checked.reason = deleted ? "" : Describe(deleted.error());
      }
    }
  }
}

// The order matters. Tags of deleted contacts go first, since their templates need no repair any
// more. Orphans go last, since a folder or a template that was made again may have ended being one.
void Repair(const platform::Platform& platform, CheckedStore& checked,
            const RepairProgress& progress) {
  CleanUp(platform, checked.findings);
  if (checked.tagCount > 0) {
    // If this fails, each template that needs a folder reports it.
    storage::CreateInstallFolders(platform.files);
    storage::CreateDataFolders(platform.files);
  }
  for (std::size_t i = 0; i < checked.findings.size(); ++i) {
    if (progress) {
      progress(i, checked.findings.size());
    }
    CheckedFinding& found = checked.findings[i];
    if (!found.isRepaired && IsRepairable(found.finding.problem)) {
      const auto result = maintenance::RepairTemplate(platform, found.finding.tag);
      found.isRepaired = result.has_value();
      found.reason = result ? "" : Describe(result.error());
    }
  }
  RemoveOrphans(platform, checked.findings);
}

}  // namespace

std::optional<CheckedStore> CheckStore(Session& session, Repairing repairing,
                                       const RepairProgress& progress) {
  const bool mayRepair = repairing == Repairing::kYes && session.HasRootFolder();  // It makes none.
  if (!(mayRepair ? session.OpenForChanging() : session.OpenForReading())) {
    return std::nullopt;
  }
  // A look at the tags waits for nobody, and keeps nobody from changing them. What a killed
  // deletion left is no finding of a repair: it is finished or undone.
  std::optional<HeldTags> hold;
  if (mayRepair && !hold.emplace(session).IsHeld()) {
    return std::nullopt;
  }
  const platform::Platform own = session.GetPlatform();
  // The mathematics shows a box for each file that it cannot read. The findings say the same, once.
  headless::HeadlessUi silent;
  const platform::Platform platform{own.files, own.waveIn,   own.clock,    own.threads, own.process,
                                    silent,    own.registry, own.contacts, own.waveOut, own.shell};
  CheckedStore checked = FindProblems(session, platform);
  if (mayRepair) {
    Repair(platform, checked, progress);
  }
  return checked;
}

}  // namespace session
