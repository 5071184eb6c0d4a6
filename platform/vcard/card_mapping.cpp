#include "platform/vcard/card_mapping.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/text/utf.h"
#include "platform/vcard/ascii.h"
#include "platform/vcard/charset.h"
#include "platform/vcard/escapes.h"

namespace vcard {
namespace {

/// Text as it is shown: without blanks at its ends, and on one line.
std::u16string ToShownText(std::string_view value) {
  std::u16string shown = text::FromUtf8(value);
  std::replace_if(
      shown.begin(), shown.end(), [](char16_t c) { return c < u' '; }, u' ');
  const std::size_t first = shown.find_first_not_of(u' ');
  if (first == std::u16string::npos) {
    return {};
  }
  return shown.substr(first, shown.find_last_not_of(u' ') - first + 1);
}

/// Component `index` of a structured value such as N or ORG.
std::u16string Component(const ContentLine& line, std::size_t index) {
  return index < line.components.size() ? ToShownText(line.components[index]) : std::u16string();
}

/// The middle names, which are separated by commas where there are several.
std::u16string MiddleName(const ContentLine& name) {
  constexpr std::size_t kMiddleNames = 2;
  if (name.components.size() <= kMiddleNames) {
    return {};
  }
  std::string names = name.components[kMiddleNames];
  std::replace(names.begin(), names.end(), ',', ' ');
  return ToShownText(names);
}

/// A value that is none of several components, with its semicolons.
std::string WholeValue(const ContentLine& line) {
  std::string whole = line.components.front();
  std::for_each(line.components.begin() + 1, line.components.end(),
                [&whole](const std::string& component) { whole += ';' + component; });
  return whole;
}

/// Versions of one card differ in whether the identifier is written as a URI.
std::string ToUid(const std::string& value) {
  constexpr std::string_view kUriPrefix = "urn:uuid:";
  std::string_view uid = Trim(value);
  if (EqualIgnoringCase(uid.substr(0, kUriPrefix.size()), kUriPrefix)) {
    uid.remove_prefix(kUriPrefix.size());
  }
  return std::string(uid);
}

/// The number of a telephone line; empty where the line leads to something else.
std::u16string NumberOf(const ContentLine& line) {
  constexpr std::string_view kScheme = "tel:";
  const std::string value = WholeValue(line);
  const std::string_view trimmed = Trim(value);
  if (EqualIgnoringCase(trimmed.substr(0, kScheme.size()), kScheme)) {
    const std::string_view number = trimmed.substr(kScheme.size());
    return ToShownText(GuessUtf8(DecodePercents(number.substr(0, number.find(';')))));
  }
  const bool hasOtherScheme = line.isUri && trimmed.find(':') != std::string_view::npos;
  return hasOtherScheme ? std::u16string() : ToShownText(trimmed);
}

/// Fills in the name of a card that gives it in one piece only.
void TakeFormattedName(const std::u16string& formattedName, ContactData& contact) {
  const bool isNamed =
      !contact.firstName.empty() || !contact.middleName.empty() || !contact.lastName.empty();
  if (!isNamed && formattedName != contact.companyName) {
    contact.firstName = formattedName;
  }
}

Numbers ReadNumbers(const Card& card, const std::map<std::string, std::string>& labels) {
  std::vector<TelephoneLine> telephones;
  for (const ContentLine& line : card) {
    const bool isExtension = line.name == "X-MS-TEL";
    std::u16string number = isExtension || line.name == "TEL" ? NumberOf(line) : std::u16string();
    if (number.empty()) {
      continue;
    }
    telephones.push_back({std::move(number), line.words, isExtension});
    const auto label = labels.find(line.group);
    if (label != labels.end()) {
      AppendWords(label->second, telephones.back().words);
    }
  }
  return AssignNumbers(telephones);
}

}  // namespace

ContactData ToContactData(const Card& card) {
  ContactData contact;
  std::u16string formattedName;
  std::map<std::string, std::string> labels;  // By group.
  bool hasName = false;
  bool hasCompany = false;
  for (const ContentLine& line : card) {
    if (line.name == "N" && !hasName) {
      hasName = true;
      contact.lastName = Component(line, 0);
      contact.firstName = Component(line, 1);
      contact.middleName = MiddleName(line);
    } else if (line.name == "ORG" && !hasCompany) {
      hasCompany = true;
      contact.companyName = Component(line, 0);
    } else if (line.name == "FN" && formattedName.empty()) {
      formattedName = ToShownText(WholeValue(line));
    } else if (line.name == "UID" && contact.uid.empty()) {
      contact.uid = ToUid(WholeValue(line));
    } else if (line.name == "X-ABLABEL" && !line.group.empty()) {
      labels[line.group] = WholeValue(line);
    }
  }
  TakeFormattedName(formattedName, contact);
  contact.numbers = ReadNumbers(card, labels);
  return contact;
}

}  // namespace vcard
