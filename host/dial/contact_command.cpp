#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "backends/text/names.h"
#include "backends/text/utf.h"
#include "dialer/callee.h"
#include "dialer/conversation.h"
#include "dialer/taught_tags.h"
#include "host/cli/contact_choice.h"
#include "host/cli/output.h"
#include "host/dial/commands.h"
#include "host/session/contact_listing.h"
#include "host/session/page_run.h"
#include "tags/phone_kind.h"

// `dial --to`: a call to a person who is named, so that nobody has to speak.
namespace dial {
namespace {

using session::ListedContact;

/// Returns the one contact that `wanted` means, as `tags learn --contact` takes it. Returns null,
/// and reports the candidates, if that is none or if there are several.
const ListedContact* ChooseContact(cli::Session& session,
                                   const std::vector<ListedContact>& contacts,
                                   const std::string& wanted) {
  std::vector<cli::NamedContact> named;
  named.reserve(contacts.size());
  for (const ListedContact& contact : contacts) {
    named.push_back({contact.oid, contact.index, contact.name});
  }
  const std::vector<std::size_t> found = cli::FindContacts(named, wanted);
  if (found.size() == 1) {
    return &contacts[found.front()];
  }
  session.Fail(
      found.empty()
          ? fmt::format("no contact with a number is called \"{}\"", wanted)
          : fmt::format("\"{}\" can mean each of these; give the number in front as --to", wanted));
  for (const std::size_t index : found) {
    cli::PrintErrorLine(
        fmt::format("{:>11}  {}", contacts[index].oid, text::ToUtf8(contacts[index].name)));
  }
  return nullptr;
}

/// Returns the kind of the number that is wanted; without a wish it is the first one. Returns
/// nothing, and reports it, if the contact has no such number.
std::optional<std::u16string> ChooseKind(cli::Session& session, const ListedContact& contact,
                                         const std::string& wanted) {
  std::string offered;
  // Each of them is what the Learning page lists: the number and, after a blank, its kind.
  for (const std::u16string& number : contact.numbers) {
    const std::u16string_view kind = tags::PhoneTypeWord(number);
    if (wanted.empty() || text::SameName(kind, text::FromUtf8(wanted))) {
      return std::u16string(kind);
    }
    offered += (offered.empty() ? "" : ", ") + text::ToUtf8(kind);
  }
  session.Fail(
      fmt::format("the contact has no number of the kind \"{}\"; it has: {}", wanted, offered));
  return std::nullopt;
}

std::optional<std::vector<ListedContact>> ReadContacts(cli::Session& session) {
  std::vector<ListedContact> contacts;
  const auto listed =
      session::ListContacts(session, session::LoadTexts(session),
                            [&](ListedContact contact) { contacts.push_back(std::move(contact)); });
  if (!listed) {
    session.Fail("the contacts cannot be listed");
    return std::nullopt;
  }
  if (session.GetContacts().GetProblem() == vcard::AddressBooks::Problem::kNothingChosen) {
    session.Fail(session::ExplainContactsProblem(session));
    return std::nullopt;
  }
  return contacts;
}

}  // namespace

void CallContact(cli::Session& session, const cli::DialOptions& options) {
  if (!session.OpenForReading()) {
    return;
  }
  platform::ContactsStore* const store = OpenContacts(session);
  if (store == nullptr) {
    session.Fail(session::ExplainContactsProblem(session));
    return;
  }
  const auto contacts = ReadContacts(session);
  const ListedContact* const contact =
      contacts ? ChooseContact(session, *contacts, options.to) : nullptr;
  const auto kind =
      contact == nullptr ? std::nullopt : ChooseKind(session, *contact, options.number);
  if (!kind) {
    return;
  }
  // Nobody was heard. So there is no tag and no distance, and nothing speaks for anybody else.
  const dialer::Candidate candidate{
      .tag = {}, .oid = contact->oid, .phoneKind = *kind, .distance = 0, .score = 1};
  const dialer::Callee callee = dialer::FindCallee(store, candidate);
  Talk(session, options, {}, [&callee](dialer::Conversation& conversation) {
    // What goes wrong was reported to the session.
    static_cast<void>(conversation.Call(callee));
  });
}

}  // namespace dial
