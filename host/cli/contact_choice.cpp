#include "host/cli/contact_choice.h"

#include <fmt/format.h>

#include <cstddef>
#include <vector>

#include "backends/text/names.h"
#include "backends/text/utf.h"
#include "host/cli/contact_matching.h"
#include "host/cli/output.h"
#include "host/session/contact_listing.h"
#include "resources/dialogs.h"
#include "tags/phone_kind.h"

// Who is meant by --contact, and which number by --number. People type a part of a name, a number
// of the list, or an identifier, so every contact is compared and the best likeness counts. If
// several are equally like, nobody is chosen.
namespace cli {
namespace {

using resources::kContactComboId;
using resources::kNumberComboId;

/// Items of the contact combo box.
std::vector<int> FindItems(const session::PageRun& run, const std::string& name) {
  std::vector<NamedContact> contacts;
  std::vector<int> items;
  for (int i = 0; i < run.dialog.GetItemCount(kContactComboId); ++i) {
    if (const tags::ContactRecord* record = run.page.GetPicker().GetContacts().Find(i)) {
      contacts.push_back({record->oid, i + 1, run.dialog.GetItemText(kContactComboId, i)});
      items.push_back(i);
    }
  }
  std::vector<int> found;
  for (const std::size_t index : FindContacts(contacts, name)) {
    found.push_back(items[index]);
  }
  return found;
}

}  // namespace

bool ChooseContact(Session& session, session::PageRun& run, const std::string& wanted) {
  const std::vector<int> found = FindItems(run, wanted);
  if (found.size() == 1) {
    run.dialog.Choose(kContactComboId, found.front());
    return true;
  }
  if (session.GetContacts().GetProblem() == vcard::AddressBooks::Problem::kNothingChosen) {
    session.Fail(session::ExplainContactsProblem(session));
    return false;
  }
  session.Fail(found.empty() ? fmt::format("no contact with a number is called \"{}\"", wanted)
                             : fmt::format("\"{}\" can mean each of these; give the number in "
                                           "front as --contact",
                                           wanted));
  for (const int item : found) {
    const tags::ContactRecord* record = run.page.GetPicker().GetContacts().Find(item);
    PrintErrorLine(fmt::format("{:>11}  {}", record->oid,
                               text::ToUtf8(run.dialog.GetItemText(kContactComboId, item))));
  }
  return false;
}

bool ChooseNumber(Session& session, session::PageRun& run, const std::string& kind) {
  std::string offered;
  for (int i = 0; i < run.dialog.GetItemCount(kNumberComboId); ++i) {
    const std::u16string item = run.dialog.GetItemText(kNumberComboId, i);
    if (text::SameName(tags::PhoneTypeWord(item), text::FromUtf8(kind))) {
      run.dialog.Choose(kNumberComboId, i);
      return true;
    }
    offered += (offered.empty() ? "" : ", ") + text::ToUtf8(tags::PhoneTypeWord(item));
  }
  session.Fail(
      fmt::format("the contact has no number of the kind \"{}\"; it has: {}", kind, offered));
  return false;
}

}  // namespace cli
