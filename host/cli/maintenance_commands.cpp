#include "host/cli/maintenance_commands.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "host/cli/output.h"
#include "host/cli/page_run.h"
#include "maintenance/store_check.h"
#include "maintenance/template_repair.h"
#include "platform/headless/memory_registry.h"
#include "platform/text/utf.h"
#include "resources/dialogs.h"
#include "storage/registry_keys.h"
#include "tags/contact_opening.h"

namespace cli {
namespace {

using maintenance::StoreFinding;
using platform::RegistryError;

/// Makes the recorded version missing, so that the page finds another one than its own.
bool ForgetVersion(platform::Registry& registry) {
  const platform::OpenedKey key = registry.CreateKey(storage::kSetupKey);
  const RegistryError error =
      key.key ? key.key->DeleteValue(storage::kMathVersionValue) : key.error;
  return error == RegistryError::kNone || error == RegistryError::kNotFound;
}

void PrintReinit(Session& session, const PageRun& run, bool hasRun) {
  const std::int32_t tagCount = run.page.GetTags().tagCount;
  if (session.GetOptions().json) {
    PrintJson({{"ran", hasRun}, {"tags", tagCount}});
  } else if (hasRun) {
    PrintLine("The voice templates were computed anew.");
  } else {
    PrintLine(tagCount == 0 ? "There are no voice tags."
                            : "The voice templates are those of this version already; --force "
                              "computes them all the same.");
  }
}

void Reinit(Session& session, bool isForced) {
  RunPage(session, [&](PageRun& run) {
    bool hasRun = run.wasReinitialized;
    if (isForced && !hasRun && run.page.GetTags().tagCount > 0) {
      if (!ForgetVersion(session.GetRegistry())) {
        session.Fail("the settings cannot be changed");
        return;
      }
      run.page.OnCommand(resources::kCheckVersionCommand, platform::CommandEvent::kPosted);
      hasRun = true;
    }
    const bool isWhole = session.GetUi().GetMessages().empty();
    if (!hasRun || isWhole) {
      PrintReinit(session, run, hasRun);
    } else {
      session.Fail("not every voice template was computed anew; `voxtrel check` tells which");
    }
  });
}

/// The platform of the check: message boxes go nowhere, and a registry that does not exist is not
/// made.
class CheckPlatform {
 public:
  explicit CheckPlatform(Session& session) : m_session(session) {
    std::error_code ignored;
    m_hasRegistry = std::filesystem::exists(session.GetRegistryPath(), ignored);
  }

  [[nodiscard]] platform::Platform Get() {
    const platform::Platform own = m_session.GetPlatform();
    platform::Registry& registry = m_hasRegistry ? own.registry : m_noRegistry;
    return {own.files, own.waveIn, own.clock,    own.threads, own.process,
            m_silent,  registry,   own.contacts, own.waveOut, own.shell};
  }

  /// Opens the contacts; tells where that fails.
  [[nodiscard]] maintenance::ContactsState OpenContacts() {
    const platform::Platform platform = Get();
    if (m_hasRegistry && tags::OpenContacts(platform.contacts, platform.clock)) {
      m_session.Fail("the contacts cannot be read, so nothing is said about them");
      return maintenance::ContactsState::kAway;
    }
    return m_hasRegistry ? maintenance::ContactsState::kOpen : maintenance::ContactsState::kAway;
  }

 private:
  Session& m_session;
  bool m_hasRegistry = false;
  headless::HeadlessUi m_silent;
  headless::MemoryRegistry m_noRegistry;
};

struct CheckedFinding {
  StoreFinding finding;
  bool isRepaired = false;
};

void PrintFindings(Session& session, const std::vector<CheckedFinding>& findings) {
  Json json = Json::array();
  for (const auto& [finding, isRepaired] : findings) {
    const std::string tag = text::ToUtf8(finding.tag);
    if (session.GetOptions().json) {
      json.push_back({{"problem", ToWord(finding.problem)},
                      {"tag", tag},
                      {"text", Describe(finding.problem)},
                      {"repaired", isRepaired}});
    } else {
      PrintLine(fmt::format("{}{}{} [{}]{}", tag, tag.empty() ? "" : ": ",
                            Describe(finding.problem), ToWord(finding.problem),
                            isRepaired ? " repaired" : ""));
    }
  }
  if (session.GetOptions().json) {
    PrintJson({{"findings", json}});
  } else if (findings.empty()) {
    PrintLine("All voice tags are as they should be.");
  }
}

void Repair(const platform::Platform& platform, std::vector<CheckedFinding>& findings) {
  for (CheckedFinding& checked : findings) {
    checked.isRepaired = IsRepairable(checked.finding.problem) &&
                         maintenance::RepairTemplate(platform, checked.finding.tag);
  }
}

void Check(Session& session, bool isRepair) {
  CheckPlatform checked(session);
  const platform::Platform platform = checked.Get();
  platform::CreatedMutex page;
  if (isRepair) {
    page = platform.threads.CreateNamedMutex(tags::kInstanceMutex);
    if (page.existed) {
      session.Fail("the tags are in use by another Voxtrel; close it and try again");
      return;
    }
  }
  std::vector<CheckedFinding> findings;
  for (StoreFinding& finding : CheckStore(platform, checked.OpenContacts())) {
    findings.push_back({std::move(finding), false});
  }
  platform.contacts.Logoff();
  if (isRepair) {
    Repair(platform, findings);
  }
  PrintFindings(session, findings);
  const auto left = std::ranges::count(findings, false, &CheckedFinding::isRepaired);
  if (left > 0) {
    session.Fail(fmt::format(
        "{} {}", left,
        left == 1 ? "thing is not as it should be" : "things are not as they should be"));
  }
}

}  // namespace

void AddMaintenanceCommands(CLI::App& app, Session& session) {
  const auto isForced = std::make_shared<bool>(false);
  CLI::App* reinit = app.add_subcommand(
      "reinit", "Compute every voice template anew where another version made them");
  reinit->add_flag("--force", *isForced, "Whatever version made them");
  reinit->callback([&session, isForced] { Reinit(session, *isForced); });

  const auto isRepair = std::make_shared<bool>(false);
  CLI::App* check = app.add_subcommand(
      "check",
      "Tell what is not as it should be with the voice tags (exit code 1 where anything "
      "is), and change nothing");
  check->add_flag("--repair", *isRepair,
                  "Compute missing and torn templates anew from the kept recordings");
  check->callback([&session, isRepair] { Check(session, *isRepair); });
}

}  // namespace cli
