#include "platform/ebook/card_mapping.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <string_view>
#include <vector>

#include "platform/ebook/ascii.h"
#include "platform/ebook/charset.h"
#include "platform/ebook/glib_pointers.h"
#include "platform/text/utf.h"

namespace ebook {
namespace {

std::string_view View(const char* text) { return text == nullptr ? std::string_view() : text; }

/// Text as it is shown: without blanks at its ends, and on one line.
std::u16string ToShownText(std::string_view value) {
  std::u16string shown = text::FromUtf8(GuessUtf8(value));
  std::replace_if(
      shown.begin(), shown.end(), [](char16_t c) { return c < u' '; }, u' ');
  const std::size_t first = shown.find_first_not_of(u' ');
  if (first == std::u16string::npos) {
    return {};
  }
  return shown.substr(first, shown.find_last_not_of(u' ') - first + 1);
}

/// Component `index` of a structured value such as N or ORG.
std::u16string Component(EVCardAttribute* attribute, unsigned index) {
  const GList* values = e_vcard_attribute_get_values(attribute);
  const GList* value = g_list_nth(const_cast<GList*>(values), index);
  return value == nullptr ? std::u16string() : ToShownText(View(static_cast<char*>(value->data)));
}

/// The value with the semicolons at which the parser cut it.
std::string WholeValue(EVCardAttribute* attribute) {
  std::string whole;
  for (const GList* value = e_vcard_attribute_get_values(attribute); value != nullptr;
       value = value->next) {
    whole += View(static_cast<char*>(value->data));
    whole += value->next != nullptr ? ";" : "";
  }
  return whole;
}

/// Group of a line, in capitals. Lines without one belong to nothing.
std::string GroupOf(EVCardAttribute* attribute) {
  return ToUpper(View(e_vcard_attribute_get_group(attribute)));
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

std::string DecodePercents(std::string_view text) {
  const std::string copy(text);
  const std::unique_ptr<char, decltype(&g_free)> decoded(
      g_uri_unescape_string(copy.c_str(), nullptr), &g_free);
  return decoded ? decoded.get() : copy;
}

/// The number of a telephone line; empty where the line leads to something else.
std::u16string NumberOf(const std::string& value, bool isUri) {
  constexpr std::string_view kScheme = "tel:";
  const std::string_view trimmed = Trim(value);
  if (EqualIgnoringCase(trimmed.substr(0, kScheme.size()), kScheme)) {
    const std::string_view number = trimmed.substr(kScheme.size());
    return ToShownText(DecodePercents(number.substr(0, number.find(';'))));
  }
  const bool hasOtherScheme = isUri && trimmed.find(':') != std::string_view::npos;
  return hasOtherScheme ? std::u16string() : ToShownText(trimmed);
}

struct TelephoneAttribute {
  EVCardAttribute* attribute;
  bool needsKind;
};

TelephoneLine ToLine(const TelephoneAttribute& telephone,
                     const std::map<std::string, std::string>& labels) {
  TelephoneLine line;
  line.needsKind = telephone.needsKind;
  bool isUri = false;
  for (const GList* node = e_vcard_attribute_get_params(telephone.attribute); node != nullptr;
       node = node->next) {
    auto* parameter = static_cast<EVCardAttributeParam*>(node->data);
    const std::string_view name = View(e_vcard_attribute_param_get_name(parameter));
    if (EqualIgnoringCase(name, "PREF")) {
      line.words.emplace_back("PREF");
    }
    for (const GList* value = e_vcard_attribute_param_get_values(parameter); value != nullptr;
         value = value->next) {
      const std::string_view text = View(static_cast<char*>(value->data));
      if (EqualIgnoringCase(name, "TYPE")) {
        AppendWords(text, line.words);
      }
      isUri = isUri || (EqualIgnoringCase(name, "VALUE") && EqualIgnoringCase(text, "uri"));
    }
  }
  const auto label = labels.find(GroupOf(telephone.attribute));
  if (label != labels.end()) {
    AppendWords(label->second, line.words);
  }
  line.number = NumberOf(WholeValue(telephone.attribute), isUri);
  return line;
}

/// Fills in the name of a card that gives it in one piece only.
void TakeFormattedName(const std::u16string& formattedName, ContactData& contact) {
  const bool isNamed =
      !contact.firstName.empty() || !contact.middleName.empty() || !contact.lastName.empty();
  if (!isNamed && formattedName != contact.companyName) {
    contact.firstName = formattedName;
  }
}

Numbers ReadNumbers(const std::vector<TelephoneAttribute>& telephones,
                    const std::map<std::string, std::string>& labels) {
  std::vector<TelephoneLine> lines;
  for (const TelephoneAttribute& telephone : telephones) {
    lines.push_back(ToLine(telephone, labels));
    if (lines.back().number.empty()) {
      lines.pop_back();
    }
  }
  return AssignNumbers(lines);
}

}  // namespace

ContactData ToContactData(EVCard& card) {
  ContactData contact;
  std::u16string formattedName;
  std::map<std::string, std::string> labels;  // By group, in capitals.
  std::vector<TelephoneAttribute> telephones;
  bool hasName = false;
  bool hasCompany = false;
  for (GList* node = e_vcard_get_attributes(&card); node != nullptr; node = node->next) {
    auto* attribute = static_cast<EVCardAttribute*>(node->data);
    const std::string_view name = View(e_vcard_attribute_get_name(attribute));
    if (EqualIgnoringCase(name, "N") && !hasName) {
      hasName = true;
      contact.lastName = Component(attribute, 0);
      contact.firstName = Component(attribute, 1);
      contact.middleName = Component(attribute, 2);
      std::replace(contact.middleName.begin(), contact.middleName.end(), u',', u' ');
    } else if (EqualIgnoringCase(name, "ORG") && !hasCompany) {
      hasCompany = true;
      contact.companyName = Component(attribute, 0);
    } else if (EqualIgnoringCase(name, "FN") && formattedName.empty()) {
      formattedName = ToShownText(WholeValue(attribute));
    } else if (EqualIgnoringCase(name, "UID") && contact.uid.empty()) {
      contact.uid = ToUid(WholeValue(attribute));
    } else if (EqualIgnoringCase(name, "X-ABLABEL")) {
      labels[GroupOf(attribute)] = WholeValue(attribute);
    } else if (EqualIgnoringCase(name, "TEL")) {
      telephones.push_back({attribute, false});
    } else if (EqualIgnoringCase(name, "X-MS-TEL")) {
      telephones.push_back({attribute, true});
    }
  }
  TakeFormattedName(formattedName, contact);
  labels.erase(std::string());
  contact.numbers = ReadNumbers(telephones, labels);
  return contact;
}

ContactData ParseCard(const std::string& card) {
  const ObjectPointer<EVCard> parsed(e_vcard_new_from_string(card.c_str()));
  return ToContactData(*parsed);
}

}  // namespace ebook
