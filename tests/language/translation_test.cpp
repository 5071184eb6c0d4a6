#include "language/translation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "language/language_table.h"
#include "resources/language_keys.h"
#include "tests/language/language_bytes.h"
#include "tests/language/source_files.h"

namespace {

using language::CheckLanguageFile;
using language::Finding;
using language::FindingKind;
using language::LanguageTable;
using std::string_view_literals::operator""sv;
using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;

std::vector<std::byte> Template() { return language::ToLanguageFile(language::LanguageTemplate()); }

TEST(LanguageTemplate, IsTheFileThatIsShipped) {
  EXPECT_TRUE(ReadSourceFile("resources/languages/Voxtrel.lng") == Template())
      << "write it again: voxtrel language template resources/languages/Voxtrel.lng";
}

TEST(LanguageTemplate, HoldsEveryKeyOnceWithItsEnglish) {
  LanguageTable table;
  table.LoadFrom(Template());
  ASSERT_EQ(table.GetCount(), resources::kLanguageKeys.size());
  for (std::size_t i = 0; i < resources::kLanguageKeys.size(); ++i) {
    EXPECT_EQ(table.GetEntries()[i].key, resources::kLanguageKeys[i].key);
    EXPECT_EQ(table.GetEntries()[i].text, resources::kLanguageKeys[i].english);
  }
}

TEST(LanguageTemplate, ExplainsEveryText) {
  for (const resources::LanguageKey& row : resources::kLanguageKeys) {
    EXPECT_FALSE(row.note.empty());
  }
}

TEST(LanguageTemplate, IsWrittenLowByteFirstAfterTheByteOrderMark) {
  const std::vector<std::byte> expected = {std::byte{0xFF}, std::byte{0xFE}, std::byte{0x16},
                                           std::byte{0x04}, std::byte{'/'},  std::byte{0}};
  EXPECT_EQ(language::ToLanguageFile(u"\u0416/"), expected);
}

TEST(LanguageTemplate, EndsEveryLineWithCrLf) {
  const std::u16string text = language::LanguageTemplate();
  ASSERT_TRUE(text.ends_with(u"\r\n"));
  const auto lines = std::count(text.begin(), text.end(), u'\n');
  EXPECT_EQ(std::count(text.begin(), text.end(), u'\r'), lines);
  std::ptrdiff_t found = 0;
  for (std::size_t at = 0; (at = text.find(u"\r\n", at)) != std::u16string::npos; at += 2) {
    ++found;
  }
  EXPECT_EQ(found, lines);
}

auto Found(FindingKind kind, std::size_t line, const std::u16string& key) {
  return AllOf(Field(&Finding::kind, kind), Field(&Finding::line, line), Field(&Finding::key, key));
}

// Findings about what stands in the file, without those about what is missing.
std::vector<Finding> CheckLines(std::u16string_view text) {
  std::vector<Finding> findings = CheckLanguageFile(FileOf(text));
  std::erase_if(findings, [](const Finding& f) { return f.kind == FindingKind::kMissingKey; });
  return findings;
}

std::string WrongEncoding(const std::vector<std::byte>& file) {
  const std::vector<Finding> findings = CheckLanguageFile(file);
  EXPECT_THAT(findings, ElementsAre(Found(FindingKind::kWrongEncoding, 0, u"")));
  return findings.empty() ? std::string() : findings[0].message;
}

TEST(LanguageCheck, FindsNothingInTheTemplate) {
  EXPECT_THAT(CheckLanguageFile(language::ToLanguageFile(language::LanguageTemplate())), IsEmpty());
}

TEST(LanguageCheck, NamesTheEncodingThatItFound) {
  EXPECT_THAT(WrongEncoding({}), HasSubstr("empty"));
  EXPECT_THAT(WrongEncoding(Bytes("ID_TAB_2 Learning\r\n")), HasSubstr("FF FE"));
  EXPECT_THAT(WrongEncoding(Bytes("\xEF\xBB\xBFID_TAB_2 Learning\r\n")), HasSubstr("UTF-8"));
  EXPECT_THAT(WrongEncoding(Bytes("\xFE\xFF\0I\0D"sv)), HasSubstr("UTF-16BE"));
  EXPECT_THAT(WrongEncoding(Bytes("\xFF\xFE\0\0I\0\0\0"sv)), HasSubstr("UTF-32"));
  EXPECT_THAT(WrongEncoding(FileOf(u"\u0100")), HasSubstr("low byte"));
  EXPECT_THAT(WrongEncoding(FileOf(u"")), HasSubstr("holds nothing"));
}

TEST(LanguageCheck, ReportsHalfACharacterAtTheEnd) {
  std::vector<std::byte> file = language::ToLanguageFile(language::LanguageTemplate());
  file.push_back(std::byte{'x'});
  EXPECT_THAT(CheckLanguageFile(file), ElementsAre(Found(FindingKind::kWrongEncoding, 0, u"")));
}

TEST(LanguageCheck, ReportsUnknownKeys) {
  EXPECT_THAT(CheckLines(u"ID_TAB_2 Lernen\r\nID_S_MESSAGE_D12 text\r\nid_tab_2 text\r\n"),
              ElementsAre(Found(FindingKind::kUnknownKey, 2, u"ID_S_MESSAGE_D12"),
                          Found(FindingKind::kUnknownKey, 3, u"id_tab_2")));
}

TEST(LanguageCheck, ReportsEveryMissingKeyInTheOrderOfTheTable) {
  const std::vector<Finding> findings = CheckLanguageFile(FileOf(u"ID_TAB_2 Lernen\r\n"));
  ASSERT_EQ(findings.size(), resources::kLanguageKeys.size() - 1);
  EXPECT_THAT(findings[0], Found(FindingKind::kMissingKey, 0, u"ID_S_PROP_TTL"));
  EXPECT_THAT(findings[1], Found(FindingKind::kMissingKey, 0, u"ID_TAB_3"));
}

TEST(LanguageCheck, ReportsDuplicatesWithTheLineThatCounts) {
  const std::vector<Finding> findings =
      CheckLines(u"// first\r\nID_TAB_2 Lernen\r\nID_TAB_3 Info\r\nID_TAB_2 Lehren\r\n");
  ASSERT_THAT(findings, ElementsAre(Found(FindingKind::kDuplicateKey, 4, u"ID_TAB_2")));
  EXPECT_THAT(findings[0].message, HasSubstr("line 2"));
}

TEST(LanguageCheck, ReportsATextThatASlashCuts) {
  EXPECT_THAT(CheckLines(u"ID_TAB_2 An/Aus\r\nID_TAB_3 Ende / Info\r\n"),
              ElementsAre(Found(FindingKind::kTextCut, 1, u"ID_TAB_2"),
                          Found(FindingKind::kTextCut, 2, u"ID_TAB_3")));
  EXPECT_THAT(CheckLines(u"ID_TAB_2 http://host\r\nID_TAB_3 An/Aus // comment\r\n"),
              ElementsAre(Found(FindingKind::kTextCut, 1, u"ID_TAB_2"),
                          Found(FindingKind::kTextCut, 2, u"ID_TAB_3")));
}

TEST(LanguageCheck, TakesABlankAndTwoSlashesForAComment) {
  EXPECT_THAT(CheckLines(u"ID_TAB_2 Lernen // a/b\r\nID_TAB_3 Info\t//\r\n"), IsEmpty());
}

TEST(LanguageCheck, ReportsAKeyWithoutText) {
  EXPECT_THAT(CheckLines(u"ID_TAB_2\r\n ID_TAB_3 // Info\r\n\r\n  \r\n"),
              ElementsAre(Found(FindingKind::kNoText, 1, u"ID_TAB_2"),
                          Found(FindingKind::kNoText, 2, u"ID_TAB_3")));
}

TEST(LanguageCheck, ReportsATextTooShortForTheEndOfTheFile) {
  EXPECT_THAT(CheckLines(u"ID_TAB_2 Lernen\r\nID_TAB_3 ab"),
              ElementsAre(Found(FindingKind::kNoText, 2, u"ID_TAB_3")));
}

TEST(LanguageCheck, ReportsPercentSignsIfATextIsFormatted) {
  EXPECT_THAT(CheckLines(u"ID_STTL2 100 %\r\nID_STTL3 50%%\r\nID_S_MESSAGE_L Namen: %d\r\n"
                         u"ID_S_MESSAGE_D 100 %\r\n"),
              ElementsAre(Found(FindingKind::kPercentSign, 1, u"ID_STTL2"),
                          Found(FindingKind::kPercentSign, 2, u"ID_STTL3"),
                          Found(FindingKind::kPercentSign, 3, u"ID_S_MESSAGE_L")));
}

TEST(LanguageCheck, ReportsCharactersThatEndNoLineAndCountsLinesAsEditorsDo) {
  EXPECT_THAT(CheckLines(u"ID_TAB_2 one\nID_TAB_3 two\r\nID_X text\r\n"),
              ElementsAre(Found(FindingKind::kStrayCharacter, 1, u"ID_TAB_2"),
                          Found(FindingKind::kUnknownKey, 3, u"ID_X")));
  EXPECT_THAT(CheckLines(u"// comment\nID_TAB_3 two\n"),
              ElementsAre(Found(FindingKind::kStrayCharacter, 1, u"")));
  EXPECT_THAT(CheckLines(u"ID_TAB_2 one\0two\r\n"sv),
              ElementsAre(Found(FindingKind::kStrayCharacter, 1, u"ID_TAB_2")));
}

TEST(LanguageCheck, GivesEachKindAWordOfItsOwn) {
  std::vector<std::string_view> words;
  for (int kind = 0; kind <= static_cast<int>(FindingKind::kMissingKey); ++kind) {
    words.push_back(ToWord(static_cast<FindingKind>(kind)));
  }
  std::sort(words.begin(), words.end());
  EXPECT_EQ(std::unique(words.begin(), words.end()), words.end());
  EXPECT_EQ(ToWord(FindingKind::kTextCut), "text-cut");
}

}  // namespace
