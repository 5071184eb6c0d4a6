#include "backends/vcard/card_reader.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "backends/text/say.h"
#include "backends/text/utf.h"
#include "backends/vcard/charset.h"
#include "backends/vcard/contact_keys.h"
#include "resources/remark_strings.h"

namespace vcard {
namespace {

/// Returns a text as it is shown: without blanks at its ends, and on one line.
std::u16string ToShownText(std::string_view value) {
  const auto isUnseen = [](auto unit) { return unit <= ' ' && unit >= 0; };
  while (!value.empty() && isUnseen(value.front())) {
    value.remove_prefix(1);
  }
  while (!value.empty() && isUnseen(value.back())) {
    value.remove_suffix(1);
  }
  std::u16string shown = text::FromUtf8(value);
  std::ranges::replace_if(
      shown, [](char16_t c) { return c < u' '; }, u' ');
  return shown;
}

/// Returns component `index` of a structured value such as N or ORG.
std::u16string Component(const std::vector<std::string>& components, std::size_t index) {
  return index < components.size() ? ToShownText(components[index]) : std::u16string();
}

/// Returns the middle names as Rules::kFormer has them: a blank for each comma, also for one with a
/// backslash.
std::u16string FormerMiddleName(const ContentLine& name) {
  constexpr std::size_t kMiddleNames = 2;
  if (name.components.size() <= kMiddleNames) {
    return {};
  }
  std::string names = name.components[kMiddleNames];
  std::replace(names.begin(), names.end(), ',', ' ');
  return ToShownText(names);
}

/// Returns a value that has no components, with its semicolons.
std::string WholeValue(const ContentLine& line) {
  std::string whole = line.components.front();
  std::for_each(line.components.begin() + 1, line.components.end(),
                [&whole](const std::string& component) { whole += ';' + component; });
  return whole;
}

/// Returns the identifier. Versions of one card differ in whether it is written as a URI.
std::string ToUid(const std::string& value) {
  constexpr std::string_view kUriPrefix = "urn:uuid:";
  std::string_view uid = Trim(value);
  if (EqualIgnoringCase(uid.substr(0, kUriPrefix.size()), kUriPrefix)) {
    uid.remove_prefix(kUriPrefix.size());
  }
  return std::string(uid);
}

/// Returns the extension among the parameters of a "tel:" URI. Returns an empty text if there is
/// none.
std::string ExtensionOf(std::string_view parameters) {
  constexpr std::string_view kName = "ext=";
  while (!parameters.empty()) {
    parameters.remove_prefix(1);
    const std::string_view parameter = parameters.substr(0, parameters.find(';'));
    if (EqualIgnoringCase(parameter.substr(0, kName.size()), kName)) {
      return DecodePercents(parameter.substr(kName.size()));
    }
    parameters.remove_prefix(parameter.size());
  }
  return {};
}

/// Returns a number on one line. A control character within it stays a sign that no number has: as
/// a blank it would let the dialer call what nobody stored. The former rules make blanks of them.
std::u16string ToShownNumber(std::string_view value, Rules rules) {
  if (rules == Rules::kFormer) {
    return ToShownText(value);
  }
  constexpr std::string_view kBlanks = " \t\r\n";
  const std::size_t first = std::min(value.find_first_not_of(kBlanks), value.size());
  std::u16string shown =
      text::FromUtf8(value.substr(first, value.find_last_not_of(kBlanks) + 1 - first));
  std::replace_if(
      shown.begin(), shown.end(), [](char16_t c) { return c < u' '; }, u'\uFFFD');
  return shown;
}

/// Returns the number of a telephone line. Returns an empty text if the line leads to something
/// else.
std::u16string NumberOf(const ContentLine& line, Rules rules) {
  constexpr std::string_view kScheme = "tel:";
  const std::string value = WholeValue(line);
  const std::string_view trimmed = Trim(value);
  if (EqualIgnoringCase(trimmed.substr(0, kScheme.size()), kScheme)) {
    const std::string_view uri = trimmed.substr(kScheme.size());
    const std::size_t end = std::min(uri.find(';'), uri.size());
    std::string number = DecodePercents(uri.substr(0, end));
    const std::string extension = ExtensionOf(uri.substr(end));
    if (rules == Rules::kNow && !number.empty() && !extension.empty()) {
      number += ',' + extension;  // A pause before it, as phones write one.
    }
    return ToShownNumber(DecodeText(number).text, rules);
  }
  const bool hasOtherScheme = line.isUri && trimmed.find(':') != std::string_view::npos;
  return hasOtherScheme ? std::u16string() : ToShownNumber(trimmed, rules);
}

bool IsTelephone(const ContentLine& line) {
  return line.name == LineName::kTelephone || line.name == LineName::kOutlookTelephone;
}

/// Returns the first value of a line of that name that is not empty.
std::u16string FirstOf(const Card& card, LineName name) {
  for (const ContentLine& line : card) {
    if (line.name == name) {
      if (std::u16string value = ToShownText(WholeValue(line)); !value.empty()) {
        return value;
      }
    }
  }
  return {};
}

/// Returns the name that stands for a contact without any name or company.
std::u16string SubstituteName(const Card& card) {
  for (const LineName name : {LineName::kNickname, LineName::kEmail}) {
    if (std::u16string value = FirstOf(card, name); !value.empty()) {
      return value;
    }
  }
  for (const ContentLine& line : card) {
    if (IsTelephone(line)) {
      if (std::u16string number = NumberOf(line, Rules::kNow); !number.empty()) {
        return number;
      }
    }
  }
  return {};
}

// FN is the whole name, which programs also fill from the company. It only counts if N is missing
// or empty, and not if it repeats the company.
void TakeNames(const Card& card, Rules rules, ContactData& contact) {
  const auto first = [&card](LineName name) {
    return std::find_if(card.begin(), card.end(),
                        [name](const ContentLine& line) { return line.name == name; });
  };
  if (const auto name = first(LineName::kName); name != card.end()) {
    const bool isSpaced = rules == Rules::kNow && !name->spacedComponents.empty();
    const auto& components = isSpaced ? name->spacedComponents : name->components;
    contact.lastName = Component(components, 0);
    contact.firstName = Component(components, 1);
    contact.middleName = rules == Rules::kNow ? Component(components, 2) : FormerMiddleName(*name);
  }
  if (const auto company = first(LineName::kCompany); company != card.end()) {
    contact.companyName = Component(company->components, 0);
  }
  if (!contact.firstName.empty() || !contact.middleName.empty() || !contact.lastName.empty()) {
    return;
  }
  contact.firstName = FirstOf(card, LineName::kFullName);
  if (contact.firstName == contact.companyName) {
    contact.firstName.clear();
  }
  if (rules == Rules::kNow && FullNameOf(contact).empty()) {
    contact.firstName = SubstituteName(card);
  }
}

using LabelOfLine = std::map<std::string_view, const ContentLine*>;

/// A label in the user's own words may stand on a line of its own, in the same group as the number.
LabelOfLine LabelsOf(const Card& card) {
  LabelOfLine labels;
  for (const ContentLine& line : card) {
    if (line.name == LineName::kLabel && !line.group.empty()) {
      labels[line.group] = &line;
    }
  }
  return labels;
}

void TakeNumbers(const Card& card, Rules rules, ContactData& contact) {
  const LabelOfLine labels = LabelsOf(card);
  const auto wordsOf = rules == Rules::kNow ? WordsOfLabel : WordsOf;
  std::vector<TelephoneLine> telephones;
  telephones.reserve(card.size());
  for (const ContentLine& line : card) {
    std::u16string number = IsTelephone(line) ? NumberOf(line, rules) : std::u16string();
    if (number.empty()) {
      continue;
    }
    const bool needsKind = line.name != LineName::kTelephone;
    telephones.push_back({std::move(number), line.words, needsKind, line.preference, line.number});
    if (!line.label.empty()) {
      telephones.back().words |= wordsOf(line.label);
    }
    if (const auto label = labels.find(line.group); label != labels.end()) {
      telephones.back().words |= wordsOf(WholeValue(*label->second));
    }
  }
  AssignedNumbers assigned = AssignNumbers(telephones, rules);
  contact.numbers = std::move(assigned.numbers);
  for (const std::size_t index : assigned.unplaced) {
    contact.unplaced.push_back({telephones[index].number, telephones[index].place});
  }
}

/// Returns the card with its values as former versions read them. Returns nothing if they are the
/// same.
std::optional<std::vector<ContentLine>> FormerCard(const Card& card) {
  if (std::all_of(card.begin(), card.end(),
                  [](const ContentLine& line) { return line.formerComponents.empty(); })) {
    return std::nullopt;
  }
  std::vector<ContentLine> former(card.begin(), card.end());
  for (ContentLine& line : former) {
    if (!line.formerComponents.empty()) {
      line.components = std::move(line.formerComponents);
    }
  }
  return former;
}

bool Holds(const ContentLine& line, char c) {
  return std::ranges::any_of(line.components, [c](const std::string& component) {
    return component.find(c) != std::string::npos;
  });
}

/// Returns whether the rules of former versions may make another contact of the card. They differ
/// in some values, in commas of names, in what stands for a name that is missing, in preferences
/// with a number, labels, extensions, and in a second mobile number.
bool MayReadOtherwise(const Card& card) {
  std::size_t mobiles = 0;
  const ContentLine* name = nullptr;
  for (const ContentLine& line : card) {
    const bool isOdd = IsTelephone(line) && (line.preference > 0 || !line.label.empty() ||
                                             line.components.size() > 1 || Holds(line, ';'));
    if (isOdd || !line.formerComponents.empty() || line.name == LineName::kLabel) {
      return true;
    }
    name = name == nullptr && line.name == LineName::kName ? &line : name;
    mobiles += (line.words & kCellWord) != 0 ? 1U : 0U;
  }
  return mobiles > 1 || name == nullptr || Holds(*name, ',') ||
         (Component(name->components, 0).empty() && Component(name->components, 1).empty());
}

bool SaysTheSame(const ContactData& a, const ContactData& b) {
  return a.lastName == b.lastName && a.firstName == b.firstName && a.middleName == b.middleName &&
         a.companyName == b.companyName && a.numbers == b.numbers;
}

}  // namespace

// Entries that former versions stored hold a digest of what they read. Only with the same reading
// can their contacts be found again, and with them the tags. So a card is read a second time by the
// rules of those versions, unless both readings are certain to be the same.
ContactData ToContactData(const Card& card) {
  ContactData contact;
  for (const ContentLine& line : card) {
    if (line.name == LineName::kUid && contact.uid.empty()) {
      contact.uid = ToUid(WholeValue(line));
    }
  }
  TakeNames(card, Rules::kNow, contact);
  TakeNumbers(card, Rules::kNow, contact);
  if (MayReadOtherwise(card)) {
    contact.formerContent = FormerContentOf(card, contact);
  }
  return contact;
}

std::string FormerContentOf(const Card& card, const ContactData& contact) {
  ContactData former;
  const auto readOtherwise = FormerCard(card);
  const Card formerCard = readOtherwise ? Card(*readOtherwise) : card;
  TakeNames(formerCard, Rules::kFormer, former);
  TakeNumbers(formerCard, Rules::kFormer, former);
  return SaysTheSame(contact, former) ? std::string() : ContentOf(former);
}

CardReader::CardReader(std::u16string place, std::size_t maxContacts, Book& book,
                       RemarkList& remarks)
    : m_place(std::move(place)),
      m_maxContacts(maxContacts),
      m_book(book),
      m_remarks(remarks),
      m_splitter([this](const Card& card) { OnCard(card); },
                 [this](const Card& card) {
                   if (m_book.torn.size() < m_maxContacts) {
                     m_book.torn.push_back(ToContactData(card));
                   }
                 },
                 [this](std::size_t line, std::string_view sentence) {
                   m_remarks.Add({m_place, line, std::string(sentence)});
                 }) {}

void CardReader::OnCard(const Card& card) {
  if (m_book.contacts.size() > m_maxContacts) {
    return;
  }
  ContactData contact = ToContactData(card);
  for (const ContactData::UnplacedNumber& unplaced : std::exchange(contact.unplaced, {})) {
    m_remarks.Add({m_place, unplaced.line,
                   text::Say(resources::kNoKindIsFree,
                             {text::ToUtf8(unplaced.number), text::ToUtf8(FullNameOf(contact))})});
  }
  m_book.contacts.Add(contact);
}

void CardReader::Finish() {
  m_splitter.Finish();
  m_book.isComplete = m_book.isComplete && !m_splitter.IsDamaged();
}

}  // namespace vcard
