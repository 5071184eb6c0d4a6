#include "host/cli/contacts_commands.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "backends/text/utf.h"
#include "host/cli/commands.h"
#include "host/cli/contact_lists.h"
#include "host/cli/output.h"
#include "host/cli/page_run.h"
#include "host/cli/tag_reading.h"
#include "storage/device_paths.h"
#include "tags/contact_opening.h"

namespace cli {
namespace {

using Problem = vcard::AddressBooks::Problem;

Json ToJson(const ListedContact& contact) {
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

void Print(const std::vector<ListedContact>& contacts) {
  for (const ListedContact& contact : contacts) {
    PrintLine(fmt::format("{:4}  {}", contact.index, text::ToUtf8(contact.name)));
    for (const std::u16string& number : contact.numbers) {
      PrintLine("        " + text::ToUtf8(number));
    }
  }
}

void ListContacts(Session& session) {
  if (!session.OpenForReading()) {
    return;
  }
  const platform::Platform platform = session.GetPlatform();
  const language::Texts texts = LoadTexts(session);
  platform::ContactsStore& store = session.GetContacts();
  const auto failure = tags::OpenContacts(store, platform.clock);
  for (const std::string& remark : DescribeContactRemarks(session)) {
    PrintErrorLine(remark);
  }
  if (failure) {
    platform.ui.ShowMessage(tags::ToBox(*failure, texts));
    session.Fail(ExplainContactsProblem(session));
    return;
  }
  if (session.GetContacts().GetProblem() == Problem::kNothingChosen) {
    session.Fail(ExplainContactsProblem(session));
    return;
  }
  // Only for what it says on standard error: no tag is needed here.
  static_cast<void>(ListTagNames(session));
  std::vector<ListedContact> contacts;
  if (!ListContacts(store, platform.ui, texts, contacts)) {
    session.Fail("the contacts cannot be listed");
    return;
  }
  if (session.GetOptions().json) {
    Json list = Json::array();
    for (const ListedContact& contact : contacts) {
      list.push_back(ToJson(contact));
    }
    PrintJson(list);
  } else if (contacts.empty()) {
    PrintLine("No contact has a telephone number.");
  } else {
    Print(contacts);
  }
}

std::string ExplainStoreProblem(Session& session) {
  const std::string key = session.FindUnusableKey();
  return fmt::format("the settings in {} cannot be read or written{}{}",
                     session.GetRegistryPath().string(), key.empty() ? "" : ": ", key);
}

}  // namespace

std::vector<std::string> DescribeContactRemarks(Session& session) {
  std::vector<std::string> described;
  for (const vcard::Remark& remark : session.GetContacts().GetRemarks()) {
    std::string text = remark.place.starts_with(u'\\') ? session.ToHostPath(remark.place)
                                                       : text::ToUtf8(remark.place);
    text += remark.line > 0 ? fmt::format(":{}: ", remark.line) : ": ";
    described.push_back(text + remark.text);
  }
  return described;
}

std::string ExplainContactsProblem(Session& session) {
  const std::string& reason = session.GetContacts().GetReason();
  const std::string because = reason.empty() ? std::string() : " (" + reason + ")";
  switch (session.GetContacts().GetProblem()) {
    case Problem::kStore:
      return ExplainStoreProblem(session);
    case Problem::kNoServer:
      return fmt::format(
          "the desktop's address books do not answer{}; choose a vCard file with --contacts FILE",
          because);
    case Problem::kUnreadable:
      return fmt::format(
          "the chosen address book is missing or cannot be read to its end{}; choose another one "
          "with --contacts eds or --contacts FILE",
          because);
    case Problem::kNothingChosen:
      return fmt::format(
          "there are no contacts: the desktop has none{}, and there is no {}. Put your contacts "
          "there as vCards, or choose them with --contacts FILE",
          because, (session.GetRegistryPath().parent_path() / "contacts.vcf").string());
    case Problem::kTagsElsewhere:
      return "voice tags belong to contacts that this address book does not have; nothing was "
             "changed. Choose the address book they were recorded with, or delete the tags";
    case Problem::kNone:
      break;
  }
  return "the contacts cannot be read";
}

void AddContactsCommands(CLI::App& app, Session& session) {
  CLI::App* contacts = app.add_subcommand("contacts", "Look at the contacts");
  contacts->require_subcommand(1);
  contacts->add_subcommand("list", "List the contacts that have a number, and their numbers")
      ->callback([&session] { ListContacts(session); });
}

}  // namespace cli
