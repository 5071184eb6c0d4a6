#include "host/cli/commands.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "backends/text/utf.h"
#include "host/cli/output.h"
#include "host/session/page_run.h"
#include "maintenance/store_check.h"
#include "resources/dialogs.h"
#include "storage/device_paths.h"
#include "storage/registry_keys.h"
#include "storage/tag_store.h"

namespace cli {
namespace {

using platform::RegistryError;

/// Makes the recorded version missing, so that the page finds another one than its own.
platform::Result<void, RegistryError> ForgetVersion(platform::Registry& registry) {
  const platform::OpenedKey key = registry.CreateKey(storage::kSetupKey);
  if (!key) {
    return platform::Failure(key.error());
  }
  const auto deleted = (*key)->DeleteValue(storage::kMathVersionValue);
  if (!deleted && deleted.error() == RegistryError::kNotFound) {
    return {};
  }
  return deleted;
}

struct Tag {
  std::string name;
  std::string listText;  ///< Empty if it is not known.
};

struct ReinitOutcome {
  bool hasRun = false;
  std::int32_t tags = 0;
  std::int32_t recordings = 0;  ///< Of tags or not.
  std::vector<Tag> withoutRecording;
};

std::string FindListText(const storage::TagTable& tags, std::u16string_view name) {
  for (std::int32_t i = 0; i < storage::kMaxTags; ++i) {
    if (const storage::TagRecord* record = tags.GetRecord(i); record->GetTagName() == name) {
      return text::ToUtf8(record->GetDisplayText());
    }
  }
  return "";
}

void CountRecordings(const platform::Platform& platform, const storage::TagTable& tags,
                     ReinitOutcome& outcome) {
  const storage::TagStore store(platform.files, platform.registry);
  if (const auto search = store.FindRecordings()) {
    // A failure in the middle is passed over: the search ends all the same.
    for (auto found = (*search)->Next(); !found || *found; found = (*search)->Next()) {
      outcome.recordings += found ? 1 : 0;
    }
  }
  const auto names = store.OpenNames();
  if (!names) {
    return;
  }
  std::uint32_t index = 0;
  while (const auto name = names->Get(index++)) {
    const auto recording = platform.files.Find(storage::WavePath(*name));
    if (!recording && recording.error() == platform::FileError::kNotFound) {
      outcome.withoutRecording.push_back({text::ToUtf8(*name), FindListText(tags, *name)});
    }
  }
}

/// Returns whether each tag that has a recording has the template of it: what the waiting dialog
/// shows no message about must be there too.
bool HaveNewTemplates(const platform::Platform& own) {
  headless::HeadlessUi silent;
  const platform::Platform platform{own.files, own.waveIn,   own.clock,    own.threads, own.process,
                                    silent,    own.registry, own.contacts, own.waveOut, own.shell};
  using enum maintenance::StoreProblem;
  constexpr std::array kAllowed{kTooManyTags,         kTagName,        kContact,
                                kPhoneType,           kNoRecording,    kTemplateWithoutTag,
                                kRecordingWithoutTag, kRecordingEmpty, kRecordingSilent};
  return std::ranges::all_of(CheckStore(platform, maintenance::ContactsState::kAway),
                             [&](const maintenance::StoreFinding& finding) {
                               return std::ranges::find(kAllowed, finding.problem) !=
                                      kAllowed.end();
                             });
}

// The page itself decides whether templates are old: it compares the recorded version of the
// mathematics with its own. To force it, the recorded version is removed, and the page is asked to
// look again. What the page does not report is looked for afterwards in the store.
void RunReinit(Session& session, session::PageRun& run, bool isForced, ReinitOutcome& outcome) {
  outcome.tags = run.page.GetTags().tagCount;
  if (isForced && !run.wasReinitialized && outcome.tags > 0) {
    if (const auto forgotten = ForgetVersion(session.GetRegistry()); !forgotten) {
      session.Fail(session.ExplainStore(forgotten.error()));
      return;
    }
    run.page.OnCommand(resources::kCheckVersionCommand, platform::CommandEvent::kPosted);
    if (!run.wasReinitialized) {
      session.Fail("the voice templates were not computed again, since the settings do not answer");
    }
  }
  outcome.hasRun = run.wasReinitialized;
  CountRecordings(session.GetPlatform(), run.page.GetTags(), outcome);
  if (!session::ListsAllTags(session, run)) {
    session.Fail(
        "not all voice tags could be listed; `voxtrel check` says what is wrong with them");
  }
  if (outcome.hasRun && (!session.GetUi().GetMessages().empty() ||
                         (outcome.tags > 0 && !HaveNewTemplates(session.GetPlatform())))) {
    session.Fail(
        "not every voice template was computed again; `voxtrel check` says which, and `voxtrel "
        "reinit --force` tries again");
  }
}

/// Takes the outcome from a page that ended while it opened: the reinitialization found no
/// recording.
void NoteEndedReinit(Session& session, const tags::Page_one& page, ReinitOutcome& outcome) {
  outcome.hasRun = true;
  outcome.tags = page.GetTags().tagCount;
  CountRecordings(session.GetPlatform(), page.GetTags(), outcome);
}

/// A tag without a recording cannot have a new template, which is a failure.
void ReportTagsWithoutRecording(Session& session, const ReinitOutcome& outcome) {
  std::string names;
  for (const Tag& tag : outcome.withoutRecording) {
    names += (names.empty() ? "" : ", ") + tag.name;
    names += tag.listText.empty() ? "" : " (" + tag.listText + ")";
  }
  if (outcome.hasRun && !names.empty()) {
    session.Fail("these voice tags have no recording, and so no new template: " + names);
  }
}

void PrintReinit(Session& session, const ReinitOutcome& outcome) {
  if (session.GetOptions().json) {
    Json without = Json::array();
    for (const Tag& tag : outcome.withoutRecording) {
      without.push_back({{"tag", tag.name}, {"listText", tag.listText}});
    }
    Json messages = Json::array();
    for (const headless::ShownMessage& shown : session.GetUi().GetMessages()) {
      messages.push_back(text::ToUtf8(shown.box.text));
    }
    session.SetJson({{"ran", outcome.hasRun},
                     {"tags", outcome.tags},
                     {"recordings", outcome.recordings},
                     {"withoutRecording", without},
                     {"messages", messages},
                     {"problem", session.GetFailure()}});
  } else if (session.GetExitCode() != 0) {
    return;
  } else if (outcome.hasRun) {
    PrintLine("The voice templates were computed again.");
  } else {
    PrintLine(outcome.tags == 0 ? "There are no voice tags."
                                : "The voice templates are those of this version already; --force "
                                  "computes them all the same.");
  }
}

void Reinit(Session& session, bool isForced) {
  ReinitOutcome outcome;
  session::RunPage(
      session, session::Contacts::kNeeded,
      [&](session::PageRun& run) { RunReinit(session, run, isForced, outcome); },
      [&](const tags::Page_one& page) { NoteEndedReinit(session, page, outcome); });
  ReportTagsWithoutRecording(session, outcome);
  PrintReinit(session, outcome);
}

}  // namespace

void AddMaintenanceCommands(CLI::App& app, Session& session) {
  const auto isForced = std::make_shared<bool>(false);
  CLI::App* reinit =
      app.add_subcommand("reinit",
                         "Make every template again if another version made them (exit code 1 if "
                         "one cannot be made, for example because its recording is missing)");
  reinit->add_flag("--force", *isForced, "Make them again in any case");
  reinit->callback([&session, isForced] { Reinit(session, *isForced); });

  const auto isRepair = std::make_shared<bool>(false);
  CLI::App* check = app.add_subcommand("check",
                                       "Look for problems with the voice tags (exit code 1 if "
                                       "there are any). Changes nothing without --repair");
  check->add_flag("--repair", *isRepair,
                  "Make missing and torn templates again from the recordings. Move files that "
                  "belong to no tag, and tags whose contact was deleted, to the trash");
  check->callback([&session, isRepair] { CheckTags(session, *isRepair); });
}

}  // namespace cli
