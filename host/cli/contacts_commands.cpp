#include "host/cli/commands.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <string>
#include <utility>

#include "backends/text/utf.h"
#include "host/cli/output.h"
#include "host/session/contact_listing.h"
#include "host/session/page_run.h"
#include "host/session/tag_reading.h"
#include "tags/contact_reading.h"
#include "tags/phone_kind.h"

namespace cli {
namespace {

using Problem = vcard::AddressBooks::Problem;

Json ToJson(const session::ListedContact& contact) {
  Json numbers = Json::array();
  for (const std::u16string& number : contact.numbers) {
    numbers.push_back(
        {{"kind", text::ToUtf8(tags::PhoneTypeWord(number))}, {"text", text::ToUtf8(number)}});
  }
  return {{"index", contact.index},
          {"oid", contact.oid},
          {"name", text::ToUtf8(contact.name)},
          {"numbers", std::move(numbers)}};
}

void Print(const session::ListedContact& contact) {
  PrintLine(fmt::format("{:4}  {}", contact.index, text::ToUtf8(contact.name)));
  for (const std::u16string& number : contact.numbers) {
    PrintLine("        " + text::ToUtf8(number));
  }
}

void ShowContacts(Session& session) {
  if (!session.OpenForReading()) {
    return;
  }
  const platform::Platform platform = session.GetPlatform();
  const language::Texts texts = session::LoadTexts(session);
  const auto opened = tags::OpenContacts(session.GetContacts(), platform.clock);
  // On standard error, so that a list that goes to another program stays a list.
  for (const std::string& remark : session::DescribeContactRemarks(session)) {
    PrintErrorLine(remark);
  }
  if (!opened) {
    // The box of the page first, in the user's language, and then what helps.
    platform.ui.ShowMessage(tags::ToBox(opened.error(), texts));
    session.Fail(session::ExplainContactsProblem(session));
    return;
  }
  if (session.GetContacts().GetProblem() == Problem::kNothingChosen) {
    session.Fail(session::ExplainContactsProblem(session));
    return;
  }
  // This names keys among the tags that no path can name. The tags are not needed here.
  static_cast<void>(session::ListTagNames(session));
  const bool isJson = session.GetOptions().json;
  Json list = Json::array();
  bool isEmpty = true;
  const auto listed = session::ListContacts(session, texts, [&](const auto& contact) {
    isEmpty = false;
    if (isJson) {
      list.push_back(ToJson(contact));
    } else {
      Print(contact);
    }
  });
  if (!listed) {
    session.Fail("the contacts cannot be listed");
  } else if (isJson) {
    session.SetJson(std::move(list));
  } else if (isEmpty) {
    PrintLine("No contact has a telephone number.");
  }
}

}  // namespace

void AddContactsCommands(CLI::App& app, Session& session) {
  CLI::App* contacts = app.add_subcommand("contacts", "Look at the contacts");
  contacts->require_subcommand(1);
  contacts->add_subcommand("list", "List the contacts that have a number, and their numbers")
      ->callback([&session] { ShowContacts(session); });
}

}  // namespace cli
