// The parser of vCards next to the one of the desktop's own library, for every example that the
// library reads without losing something.

#include <gtest/gtest.h>
#include <libebook-contacts/libebook-contacts.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "backends/ebook/glib_pointers.h"
#include "backends/text/utf.h"
#include "backends/vcard/charset.h"
#include "backends/vcard/telephone_kinds.h"
#include "backends/vcard/vcard_splitter.h"
#include "tests/backends/vcard/read_cards.h"
#include "tests/backends/vcard/telephone_rows.h"

namespace {

/// A line as text that can be compared: "GROUP.name words:component;component".
std::string Shown(std::string_view group, vcard::LineName name, vcard::Words words,
                  const std::vector<std::string>& components) {
  std::string shown = vcard::ToUpper(group) + "." + std::to_string(static_cast<int>(name));
  if (name == vcard::LineName::kTelephone) {
    shown += " " + std::to_string(words);
  }
  for (std::size_t i = 0; i < components.size(); ++i) {
    shown += (i == 0 ? ":" : ";") + components[i];
  }
  return shown;
}

std::vector<std::string> ReadWithOurs(const std::string& text) {
  std::vector<std::string> lines;
  vcard::VcardSplitter splitter([&lines](const vcard::Card& card) {
    for (const vcard::ContentLine& line : card) {
      lines.push_back(Shown(line.group, line.name, line.words, line.components));
    }
  });
  splitter.Feed(text);
  splitter.Finish();
  EXPECT_FALSE(splitter.IsDamaged()) << text;
  return lines;
}

std::string Text(const void* text) {
  return text == nullptr ? std::string() : static_cast<const char*>(text);
}

vcard::Words WordsOf(EVCardAttribute* attribute) {
  vcard::Words words = 0;
  for (const GList* node = e_vcard_attribute_get_params(attribute); node != nullptr;
       node = node->next) {
    auto* parameter = static_cast<EVCardAttributeParam*>(node->data);
    const std::string name = vcard::ToUpper(Text(e_vcard_attribute_param_get_name(parameter)));
    for (const GList* value = e_vcard_attribute_param_get_values(parameter); value != nullptr;
         value = value->next) {
      if (name == "TYPE") {
        words |= vcard::WordsOf(Text(value->data));
      } else if (name == "PREF") {
        words |= vcard::kPreferredWord;
      }
    }
  }
  return words;
}

std::vector<std::string> ReadWithTheLibrary(const std::string& text) {
  constexpr std::string_view kCompared[] = {"N",        "FN",        "ORG",      "TEL",  "UID",
                                            "X-MS-TEL", "X-ABLABEL", "NICKNAME", "EMAIL"};
  const ebook::ObjectPointer<EVCard> card(e_vcard_new_from_string(text.c_str()));
  std::vector<std::string> lines;
  bool isFirstName = true;
  bool isNamed = false;
  for (GList* node = e_vcard_get_attributes(card.get()); node != nullptr; node = node->next) {
    auto* attribute = static_cast<EVCardAttribute*>(node->data);
    const std::string name = vcard::ToUpper(Text(e_vcard_attribute_get_name(attribute)));
    if (std::find(std::begin(kCompared), std::end(kCompared), name) == std::end(kCompared)) {
      continue;
    }
    std::vector<std::string> components;
    for (const GList* value = e_vcard_attribute_get_values(attribute); value != nullptr;
         value = value->next) {
      components.push_back(Text(value->data));
    }
    // Ours leaves out what stands for a name on a card that has one already.
    if (isNamed && (name == "FN" || name == "NICKNAME" || name == "EMAIL")) {
      continue;
    }
    if (name == "N" && std::exchange(isFirstName, false)) {
      isNamed =
          std::any_of(components.begin(),
                      components.begin() + std::min<std::ptrdiff_t>(2, std::ssize(components)),
                      [](const std::string& part) { return !vcard::Trim(part).empty(); });
    }
    lines.push_back(Shown(Text(e_vcard_attribute_get_group(attribute)),
                          vcard::PropertyOf(name + ":").name, WordsOf(attribute), components));
  }
  return lines;
}

/// What the library loses, or reads otherwise than its writer meant: Android's labels, cards within
/// cards, soft line breaks, text that names no character set and is no UTF-8.
bool IsBeyondTheLibrary(const std::string& card) {
  constexpr std::string_view kMarks[] = {"X-CUSTOM(", "AGENT:", "=\r\n"};
  return !text::IsUtf8(card) ||
         std::any_of(std::begin(kMarks), std::end(kMarks), [&card](std::string_view mark) {
           return vcard::ContainsIgnoringCase(card, mark);
         });
}

/// Each whole card of a file.
std::vector<std::string> CardsOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  const std::string content(std::istreambuf_iterator<char>(stream), {});
  constexpr std::string_view kEnd = "END:VCARD";
  std::vector<std::string> cards;
  std::size_t begin = content.find("BEGIN:VCARD");
  while (begin != std::string::npos) {
    const std::size_t end = content.find(kEnd, begin);
    if (end == std::string::npos) {
      break;
    }
    cards.push_back(content.substr(begin, end + kEnd.size() - begin) + "\r\n");
    begin = content.find("BEGIN:VCARD", end);
  }
  return cards;
}

/// How many of the cards were compared.
std::size_t Compare(const std::vector<std::string>& cards) {
  std::size_t compared = 0;
  for (const std::string& card : cards) {
    if (!IsBeyondTheLibrary(card)) {
      EXPECT_EQ(ReadWithOurs(card), ReadWithTheLibrary(card)) << card;
      ++compared;
    }
  }
  return compared;
}

TEST(VcardOracle, ReadsTheSampleContactsAsTheDesktopDoes) {
  EXPECT_GE(Compare(CardsOf(std::filesystem::path(VOXTREL_SAMPLES_DIR) / "contacts.vcf")), 8U);
}

TEST(VcardOracle, ReadsEachExportersTelephoneLinesAsTheDesktopDoes) {
  std::vector<std::string> cards;
  const auto add = [&cards](std::span<const vcard_test::Row> rows) {
    for (const vcard_test::Row& row : rows) {
      cards.push_back(WriteCard("N:Lee;Ann;;;\n" + std::string(row.lines), row.version));
    }
  };
  add(vcard_test::kStandard);
  add(vcard_test::kEvolution);
  add(vcard_test::kOutlook);
  add(vcard_test::kApple);
  add(vcard_test::kAndroid);
  add(vcard_test::kVersion4);
  add(vcard_test::kNumbers);
  EXPECT_GE(Compare(cards), 45U);
}

TEST(VcardOracle, ReadsNamesAndIdentifiersAsTheDesktopDoes) {
  EXPECT_EQ(
      Compare({WriteCard("N:Lee;Ann;May;Dr.;PhD\nFN:Dr. Ann May Lee\nORG:Acme Inc.;Sales"),
               WriteCard("N:Lee\nUID:urn:uuid:4fbe8971-0bc3", "4.0"),
               WriteCard("N:;;;;\nFN:Acme\\; Sons\nORG:Acme\\, Sons;\nUID:a\\\\b"),
               WriteCard("N:Stevenson;John;Philip,Paul;;\nFN:M\xC3\xBCller\\nJr."),
               WriteCard("item1.TEL;type=pref:1\nitem1.X-ABLabel:_$!<Mobile>!$_"),
               WriteCard("N:M\n \xC3\xBCller;An\n\tn;;;"),
               WriteCard("N;ENCODING=QUOTED-PRINTABLE:M=C3=BCller;J=3Brg;;;\nTEL;CELL:1", "2.1"),
               WriteCard("N;QUOTED-PRINTABLE;CHARSET=UTF-8:=D0=9B=D0=B8;;;;", "2.1"),
               WriteCard("N;CHARSET=ISO-8859-1;ENCODING=QUOTED-PRINTABLE:M=FCller;;;;", "2.1")}),
      9U);
}

TEST(VcardOracle, ReadsTheCornersThatFuzzingFoundAsTheDesktopDoes) {
  std::size_t compared = 0;
  for (const auto& entry : std::filesystem::directory_iterator(VOXTREL_CORPUS_DIR)) {
    compared += Compare(CardsOf(entry.path()));
  }
  EXPECT_GE(compared, 2U);
}

}  // namespace
