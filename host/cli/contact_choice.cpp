#include "host/cli/contact_choice.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>

#include "backends/text/names.h"
#include "backends/text/utf.h"
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

/// How well a contact fits what was asked for. Only those that fit best are meant.
/// A number that `contacts list` prints may also be a name (112), which then counts for more.
enum class Likeness : std::uint8_t {
  kNone,
  kHoldsWords,
  kSameWords,
  kListNumber,
  kSameName,
  kIdentifier
};

using Words = std::vector<std::u16string>;

/// Returns the words of a name in the order of their letters, without their letter case.
Words SortedWords(std::u16string_view name) {
  Words words(1);
  for (const char16_t unit : text::FoldName(name)) {
    if (unit == u' ') {
      words.emplace_back();
    } else {
      words.back() += unit;
    }
  }
  std::erase(words, std::u16string());
  std::ranges::sort(words);
  return words;
}

class Wanted {
 public:
  explicit Wanted(const std::string& wanted)
      : m_name(text::FromUtf8(wanted)), m_words(SortedWords(m_name)) {
    std::int32_t number = 0;
    const char* end = wanted.data() + wanted.size();
    const auto parsed = std::from_chars(wanted.data(), end, number);
    if (parsed.ec == std::errc() && parsed.ptr == end) {
      m_number = number;
    }
  }

  [[nodiscard]] Likeness Compare(const NamedContact& contact) const {
    // From the surest to the weakest sign. The identifier is unique, whatever people are called.
    if (m_number == contact.oid) {
      return Likeness::kIdentifier;
    }
    if (m_words.empty()) {
      return Likeness::kNone;  // Nothing was asked for, which every name would hold.
    }
    if (text::SameName(contact.name, m_name)) {
      return Likeness::kSameName;
    }
    if (m_number == contact.listNumber) {
      return Likeness::kListNumber;
    }
    if (SortedWords(contact.name) == m_words) {
      return Likeness::kSameWords;
    }
    const std::u16string folded = text::FoldName(contact.name);
    // "lee" finds "Lee Ann" and "Ashleen". If it finds several, the caller asks which one is meant.
    const bool holdsAll = std::ranges::all_of(m_words, [&folded](const std::u16string& word) {
      return folded.find(word) != std::u16string::npos;
    });
    return holdsAll ? Likeness::kHoldsWords : Likeness::kNone;
  }

 private:
  std::u16string m_name;
  Words m_words;
  std::optional<std::int32_t> m_number;
};

}  // namespace

std::vector<std::size_t> FindContacts(std::span<const NamedContact> contacts,
                                      const std::string& wanted) {
  const Wanted matcher(wanted);
  Likeness best = Likeness::kHoldsWords;
  std::vector<std::size_t> found;
  for (std::size_t i = 0; i < contacts.size(); ++i) {
    const Likeness likeness = matcher.Compare(contacts[i]);
    if (likeness > best) {
      best = likeness;
      found.clear();
    }
    if (likeness == best) {
      found.push_back(i);
    }
  }
  return found;
}

namespace {

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
