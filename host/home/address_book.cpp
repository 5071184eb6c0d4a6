#include "host/home/address_book.h"

#include <utility>

#include "backends/text/utf.h"
#include "backends/vcard/contact_source.h"
#include "host/home/gathering.h"
#include "host/session/contact_listing.h"
#include "host/session/held_tags.h"
#include "host/session/session.h"
#include "tags/contact_reading.h"

namespace home {
namespace {

using Problem = vcard::AddressBooks::Problem;

std::string RecallChoice(session::Session& session) {
  std::vector<vcard::Remark> ignored;  // The log-on reports them too.
  const auto choice = vcard::RecallChoice(session.GetRegistry(), ignored);
  if (!choice || !*choice) {
    return {};
  }
  return (*choice)->path.empty() ? "eds" : text::ToHostName((*choice)->path);
}

/// Logs on and counts the people.
void Read(session::Session& session, AddressBook& book) {
  vcard::AddressBooks& contacts = session.GetContacts();
  book.isRead = tags::OpenContacts(contacts, session.GetClock()).has_value();
  book.problem = contacts.GetProblem();
  book.reason = contacts.GetReason();
  book.remarks = session::DescribeContactRemarks(session);
  if (book.isRead) {
    const auto listed = session::ListContacts(session, language::Texts(),
                                              [&book](const auto& /*contact*/) { ++book.people; });
    book.people = listed ? book.people : 0;
    contacts.Logoff();
  }
}

}  // namespace

AddressBook ReadAddressBook(const machine::Options& options) {
  Gathering gathering;
  session::Session session(options, gathering);
  AddressBook book;
  if (!session.OpenForReading()) {
    book.problem = Problem::kStore;
    return book;
  }
  book.defaultFile = (session.GetRoot() / "contacts.vcf").native();
  book.chosen = options.contacts.empty() ? RecallChoice(session) : options.contacts;
  Read(session, book);
  return book;
}

BookChoice ChooseAddressBook(const machine::Options& options, const std::string& contacts) {
  // As if the program had been started with --contacts: a log-on that works remembers the choice.
  machine::Options chosen = options;
  chosen.contacts = contacts;
  Gathering gathering;
  session::Session session(chosen, gathering);
  BookChoice choice;
  choice.book.chosen = contacts;
  if (session.OpenForChanging()) {
    // A page that is open would go on with contacts of the earlier book.
    const session::HeldTags hold(session);
    if (hold.IsHeld()) {
      Read(session, choice.book);
      choice.isTaken = choice.book.isRead;
      return choice;
    }
  }
  choice.message = gathering.GetText();
  return choice;
}

}  // namespace home
