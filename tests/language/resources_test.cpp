#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>

#include "language/language_table.h"
#include "language/texts.h"
#include "language/translation.h"
#include "resources/language_keys.h"
#include "resources/strings.h"
#include "tests/language/source_files.h"

namespace {

namespace fs = std::filesystem;
using resources::kLanguageKeys;
using resources::LanguageKey;

std::string ToText(const std::vector<std::byte>& bytes) {
  std::string text;
  for (const std::byte byte : bytes) {
    text += static_cast<char>(byte);
  }
  return text;
}

// The folders of the program itself.
bool IsProgram(const std::string& folder) {
  return !folder.starts_with(".") && folder != "build" && folder != "resources" &&
         folder != "tests" && folder != "benchmarks";
}

bool IsSource(const fs::path& path) {
  return path.extension() == ".cpp" || path.extension() == ".h";
}

TEST(LanguageKeys, AreNamedOnceEach) {
  std::set<std::u16string_view> keys;
  for (const LanguageKey& row : kLanguageKeys) {
    EXPECT_TRUE(keys.insert(row.key).second);
  }
  EXPECT_EQ(keys.size(), 54U);
}

TEST(LanguageKeys, HoldTextsThatTheFormatOfTheFileCanHold) {
  for (const LanguageKey& row : kLanguageKeys) {
    EXPECT_EQ(row.key.find_first_of(u" \t/\r\n"), std::u16string_view::npos);
    EXPECT_EQ(row.english.find_first_of(u"/\r\n\t"), std::u16string_view::npos);
    EXPECT_FALSE(row.english.starts_with(u' ') || row.english.ends_with(u' '));
    EXPECT_EQ(row.note.find_first_of(u"\r\n"), std::u16string_view::npos);
  }
}

TEST(LanguageKeys, HoldNoPercentSign) {
  for (const LanguageKey& row : kLanguageKeys) {
    EXPECT_EQ(row.english.find(u'%'), std::u16string_view::npos);
  }
}

TEST(LanguageKeys, AreAllUsedByTheTextsOfTheSystem) {
  const std::string strings = ToText(ReadSourceFile("resources/strings.h"));
  for (const LanguageKey& row : kLanguageKeys) {
    const std::string key(row.key.begin(), row.key.end());
    EXPECT_NE(strings.find("(u\"" + key + "\""), std::string::npos) << key;
  }
}

// A text is made from a key of the table or does not compile, so a key that is written nowhere else
// cannot be missing from the table.
TEST(LanguageKeys, AreWrittenNowhereInTheCodeButInTheResources) {
  std::size_t scanned = 0;
  const fs::path root(VOXTREL_SOURCE_DIR);
  for (const fs::directory_entry& top : fs::directory_iterator(root)) {
    const std::string name = top.path().filename().string();
    if (!top.is_directory() || !IsProgram(name)) {
      continue;
    }
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(top.path())) {
      const fs::path path = fs::relative(entry.path(), root);
      if (!entry.is_regular_file() || !IsSource(path)) {
        continue;
      }
      ++scanned;
      const std::string code = ToText(ReadSourceFile(path));
      for (const char* const start : {"ID_S_", "ID_TAB_", "ID_STTL"}) {
        EXPECT_EQ(code.find(start), std::string::npos) << path << " names " << start;
      }
    }
  }
  EXPECT_GT(scanned, 10U);
}

// The English of a language file and the built-in one are shown alike, so that a translator who
// starts from the template starts from what users without a language file see.
TEST(Strings, ReadTheSameWithTheTemplateForALanguageFile) {
  language::LanguageTable table;
  table.LoadFrom(language::ToLanguageFile(language::LanguageTemplate()));
  const language::Texts builtIn;
  const language::Texts loaded(&table);
  for (const resources::Text& text :
       {resources::kSheetCaption, resources::kTagInUse, resources::kTestTitle,
        resources::kNoWaveFolder, resources::kReinitTitle}) {
    EXPECT_EQ(loaded(text), builtIn(text));
  }
  EXPECT_EQ(language::CountLabel(loaded, 5), language::CountLabel(builtIn, 5));
  EXPECT_EQ(language::NoVoiceTagsMessage(loaded), language::NoVoiceTagsMessage(builtIn));
  std::u16string limit = language::TagLimitMessage(loaded, 100);
  std::replace(limit.begin(), limit.end(), u'\u00A0', u' ');
  EXPECT_EQ(limit, language::TagLimitMessage(builtIn, 100));
}

TEST(Strings, NameTheKindsOfNumberByTheirCodes) {
  using std::string_view_literals::operator""sv;
  constexpr std::array kWords = {u"car"sv,      u"radio"sv,     u"mobile"sv,   u"assistant"sv,
                                 u"business"sv, u"business2"sv, u"business"sv, u"home"sv,
                                 u"home2"sv,    u"home"sv};
  constexpr std::array kKeys = {u"ID_S_MESSAGE_D14"sv, u"ID_S_MESSAGE_D13"sv, u"ID_S_MESSAGE_D11"sv,
                                u"ID_S_MESSAGE_D15"sv, u"ID_S_MESSAGE_D16"sv, u"ID_S_MESSAGE_D17"sv,
                                u"ID_S_MESSAGE_D18"sv, u"ID_S_MESSAGE_D19"sv, u"ID_S_MESSAGE_D20"sv,
                                u"ID_S_MESSAGE_D21"sv};
  const auto lower = [](std::u16string_view text) {
    std::u16string result(text);
    for (char16_t& c : result) {
      c = c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 32) : c;
    }
    return result;
  };
  for (const auto* texts :
       {&resources::kNumberFailedWhileLoading, &resources::kNumberFailedWhileRecording,
        &resources::kNumberFailedInTagList}) {
    for (std::size_t code = 0; code < texts->size(); ++code) {
      EXPECT_EQ((*texts)[code].GetKey(), kKeys[code]);
      EXPECT_TRUE(lower((*texts)[code].GetEnglish())
                      .starts_with(u"failed to get " + std::u16string(kWords[code])));
    }
  }
  for (std::size_t code = 0; code < kWords.size(); ++code) {
    EXPECT_TRUE(lower(resources::kNumberFailedOnSelection[code])
                    .starts_with(u"failed to get " + std::u16string(kWords[code])));
  }
}

TEST(Strings, WordTheFaxNumbersInTwoWays) {
  EXPECT_EQ(resources::kNumberFailedWhileLoading[6].GetEnglish(),
            u"Failed to get business fax number");
  EXPECT_EQ(resources::kNumberFailedWhileRecording[6].GetEnglish(),
            u"Failed to get BusinessFax phone number");
  EXPECT_EQ(resources::kNumberFailedWhileLoading[9].GetEnglish(), u"Failed to get home fax number");
  EXPECT_EQ(resources::kNumberFailedWhileRecording[9].GetEnglish(),
            u"Failed to get HomeFax phone number");
}

}  // namespace
