#include "host/cli/contacts_commands.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <vector>

#include "backends/headless/headless_dialog.h"
#include "backends/text/utf.h"
#include "framework/dialog.h"
#include "host/cli/commands.h"
#include "host/cli/output.h"
#include "host/cli/page_run.h"
#include "host/cli/tag_reading.h"
#include "resources/dialogs.h"
#include "tags/contact_picker.h"

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

void ShowContacts(Session& session) {
  if (!session.OpenForReading()) {
    return;
  }
  const platform::Platform platform = session.GetPlatform();
  const language::Texts texts = LoadTexts(session);
  const auto opened = tags::OpenContacts(session.GetContacts(), platform.clock);
  for (const std::string& remark : DescribeContactRemarks(session)) {
    PrintErrorLine(remark);
  }
  if (!opened) {
    platform.ui.ShowMessage(tags::ToBox(opened.error(), texts));
    session.Fail(ExplainContactsProblem(session));
    return;
  }
  if (session.GetContacts().GetProblem() == Problem::kNothingChosen) {
    session.Fail(ExplainContactsProblem(session));
    return;
  }
  // This names keys among the tags that no path can name. The tags are not needed here.
  static_cast<void>(ListTagNames(session));
  const auto contacts = ListContacts(session, texts);
  if (!contacts) {
    session.Fail("the contacts cannot be listed");
    return;
  }
  if (session.GetOptions().json) {
    Json list = Json::array();
    for (const ListedContact& contact : *contacts) {
      list.push_back(ToJson(contact));
    }
    session.SetJson(list);
  } else if (contacts->empty()) {
    PrintLine("No contact has a telephone number.");
  } else {
    Print(*contacts);
  }
}

std::string ExplainStoreProblem(Session& session) {
  const std::optional<std::string> key = session.FindUnusableKey();
  return fmt::format("the settings in {} cannot be read or written{}{}",
                     session.GetRegistryPath().string(), key ? ": " : "", key.value_or(""));
}

}  // namespace

// The numbers come from the page's own boxes, in a window that nobody sees. So they are in the same
// order as on the page.
platform::Result<std::vector<ListedContact>, tags::ContactMessage> ListContacts(
    Session& session, const language::Texts& texts) {
  platform::Ui& ui = session.GetPlatform().ui;
  const auto report = [&](const tags::ContactMessage& message) {
    ui.ShowMessage(tags::ToBox(message, texts));
  };
  framework::CDialog page(resources::kLearningDialog, ui);
  headless::HeadlessDialog boxes(resources::kLearningDialog, page, nullptr);
  tags::ContactPicker picker(session.GetContacts(), report);
  if (const auto loaded = picker.Load(boxes); !loaded) {
    report(loaded.error());
    return platform::Failure(loaded.error());
  }
  std::vector<ListedContact> listed;
  for (std::int32_t i = 0; i < picker.GetContacts().GetCount(); ++i) {
    const tags::ContactRecord& record = *picker.GetContacts().Find(i);
    picker.ListNumbers(boxes, i);
    listed.push_back({i + 1, record.oid, std::u16string(record.GetName()),
                      boxes.GetItems(resources::kNumberComboId)});
  }
  return listed;
}

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
  const std::optional<Problem> problem = session.GetContacts().GetProblem();
  if (!problem) {
    return "the contacts cannot be read";
  }
  switch (*problem) {
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
      break;
  }
  return "voice tags belong to contacts that this address book does not have; nothing was "
         "changed. Choose the address book they were recorded with, or delete the tags";
}

void AddContactsCommands(CLI::App& app, Session& session) {
  CLI::App* contacts = app.add_subcommand("contacts", "Look at the contacts");
  contacts->require_subcommand(1);
  contacts->add_subcommand("list", "List the contacts that have a number, and their numbers")
      ->callback([&session] { ShowContacts(session); });
}

}  // namespace cli
