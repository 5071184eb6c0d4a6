#include "language/language_template.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "language/language_table.h"
#include "resources/language_keys.h"
#include "tests/language/source_files.h"

namespace {

using language::LanguageTable;

std::vector<std::byte> Template() { return language::ToLanguageFile(language::LanguageTemplate()); }

TEST(LanguageTemplate, IsTheFileThatIsShipped) {
  EXPECT_TRUE(ReadSourceFile("resources/languages/Voxtrel.lng") == Template())
      << "write it anew: voxtrel language template resources/languages/Voxtrel.lng";
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

TEST(LanguageTemplate, IsWrittenLowByteFirstBehindTheByteOrderMark) {
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

}  // namespace
