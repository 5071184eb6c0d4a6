#include "host/cli/contact_choice.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "backends/text/names.h"
#include "backends/text/utf.h"
#include "host/cli/output.h"
#include "host/session/contact_listing.h"
#include "resources/dialogs.h"
#include "tags/phone_kind.h"

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

  /// `listNumber` is the number of the contact in `contacts list`, and `item` its name there.
  [[nodiscard]] Likeness Compare(const tags::ContactRecord& record, std::int32_t listNumber,
                                 std::u16string_view item) const {
    // From the surest to the weakest sign. The identifier is unique, whatever people are called.
    if (m_number == record.oid) {
      return Likeness::kIdentifier;
    }
    if (m_words.empty()) {
      return Likeness::kNone;  // Nothing was asked for, which every name would hold.
    }
    if (text::SameName(item, m_name)) {
      return Likeness::kSameName;
    }
    if (m_number == listNumber) {
      return Likeness::kListNumber;
    }
    if (SortedWords(item) == m_words) {
      return Likeness::kSameWords;
    }
    const std::u16string folded = text::FoldName(item);
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

/// Items of the contact combo box.
std::vector<int> FindContacts(const session::PageRun& run, const std::string& name) {
  const Wanted wanted(name);
  Likeness best = Likeness::kHoldsWords;
  std::vector<int> found;
  for (int i = 0; i < run.dialog.GetItemCount(kContactComboId); ++i) {
    const tags::ContactRecord* record = run.page.GetPicker().GetContacts().Find(i);
    const Likeness likeness =
        record == nullptr
            ? Likeness::kNone
            : wanted.Compare(*record, i + 1, run.dialog.GetItemText(kContactComboId, i));
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

}  // namespace

bool ChooseContact(Session& session, session::PageRun& run, const std::string& wanted) {
  const std::vector<int> found = FindContacts(run, wanted);
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
