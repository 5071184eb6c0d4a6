#include "host/cli/commands.h"

#include <fmt/format.h>

#include <string>
#include <utility>
#include <vector>

#include "host/cli/output.h"
#include "host/session/contact_listing.h"
#include "host/session/tag_reading.h"
#include "tags/contact_reading.h"

// What is missing on this machine. The panel reads the JSON of this command, so its members stay.
namespace cli {
namespace {

struct FoundContacts {
  std::size_t count = 0;  ///< Of those with a telephone number.
  std::string problem;    ///< Why there are none, and what helps; empty if there are some.
  std::vector<std::string> remarks = {};
  std::string reason = {};  ///< The problem without what helps; empty if nothing helps here.
};

FoundContacts FindContacts(Session& session) {
  const platform::Platform platform = session.GetPlatform();
  if (!tags::OpenContacts(session.GetContacts(), platform.clock)) {
    return {0, session::ExplainContactsProblem(session), session::DescribeContactRemarks(session),
            session::ExplainContactsReason(session)};
  }
  if (session.GetContacts().GetProblem() == vcard::AddressBooks::Problem::kNothingChosen) {
    return {
        0, session::ExplainContactsProblem(session), {}, session::ExplainContactsReason(session)};
  }
  // In English, as all of the command line is.
  std::size_t count = 0;
  const auto listed = session::ListContacts(session, language::Texts(nullptr),
                                            [&count](const auto& /*contact*/) { ++count; });
  if (!listed) {
    return {0, "the contacts cannot be listed"};
  }
  return {count, count == 0 ? "no contact has a telephone number" : "",
          session::DescribeContactRemarks(session)};
}

void Print(const FoundContacts& contacts, std::uint32_t microphones, const std::string& settings) {
  PrintLine(contacts.count > 0 ? fmt::format("Contacts with a telephone number: {}", contacts.count)
                               : fmt::format("Contacts: {}.", contacts.problem));
  for (const std::string& remark : contacts.remarks) {
    PrintLine("    " + remark);
  }
  PrintLine(microphones > 0
                ? fmt::format("Microphones: {}", microphones)
                : "No microphone: plug one in, or switch it on in the desktop's sound settings; "
                  "--microphone FILE records from a wave file.");
  PrintLine("Settings: " + settings);
}

/// The command is asked what is missing. So a missing thing is its answer, and no failure.
void ShowStatus(Session& session) {
  if (!session.OpenForReading()) {
    return;
  }
  const FoundContacts contacts = FindContacts(session);
  // Only for what it says on standard error: no tag is needed here.
  static_cast<void>(session::ListTagNames(session));
  const std::uint32_t microphones = session.GetPlatform().waveIn.GetDeviceCount();
  if (session.GetOptions().json) {
    Json ofContacts = {{"count", contacts.count}, {"problem", contacts.problem}};
    // What helps is for people who type commands. A window has its own.
    if (!contacts.reason.empty()) {
      ofContacts["reason"] = contacts.reason;
    }
    if (!contacts.remarks.empty()) {
      ofContacts["remarks"] = contacts.remarks;
    }
    session.SetJson({{"contacts", std::move(ofContacts)},
                     {"microphones", microphones},
                     {"settings", session.GetRegistryName()}});
  } else {
    Print(contacts, microphones, session.GetRegistryName());
  }
}

}  // namespace

void AddStatusCommands(CLI::App& app, Session& session) {
  app.add_subcommand(
         "status",
         "Say whether this machine has contacts and a microphone, and where the settings are")
      ->callback([&session] { ShowStatus(session); });
}

}  // namespace cli
