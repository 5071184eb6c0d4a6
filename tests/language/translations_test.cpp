#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "language/language_table.h"
#include "language/translation.h"
#include "resources/language_keys.h"
#include "resources/strings.h"
#include "tests/language/button_width.h"
#include "tests/language/source_files.h"

namespace {

using language::LanguageTable;
using resources::kLanguageKeys;

class Translation : public testing::TestWithParam<std::string> {
 protected:
  Translation() : m_file(ReadSourceFile("resources/languages/Voxtrel." + GetParam() + ".lng")) {
    m_table.LoadFrom(m_file);
  }

  std::u16string TextOf(const resources::Text& text) const {
    const char16_t* const found = m_table.LookUp(text.GetKey(), nullptr);
    return found == nullptr ? std::u16string() : std::u16string(found);
  }

  std::vector<std::byte> m_file;
  LanguageTable m_table;
};

TEST_P(Translation, HasNothingThatTheCheckFinds) {
  for (const language::Finding& finding : language::CheckLanguageFile(m_file)) {
    ADD_FAILURE() << "line " << finding.line << ": " << finding.message;
  }
}

TEST_P(Translation, HoldsTheKeysOfTheTableInTheirOrder) {
  ASSERT_EQ(m_table.GetCount(), kLanguageKeys.size());
  for (std::size_t i = 0; i < kLanguageKeys.size(); ++i) {
    EXPECT_EQ(m_table.GetEntries()[i].key, kLanguageKeys[i].key);
  }
}

TEST_P(Translation, HoldsNoPercentSign) {
  for (const LanguageTable::Entry& entry : m_table.GetEntries()) {
    EXPECT_EQ(entry.text.find(u'%'), std::u16string::npos);
  }
}

TEST_P(Translation, LeavesNoTextInEnglishButNamesAndWordsOfBothLanguages) {
  std::size_t same = 0;
  for (std::size_t i = 0; i < kLanguageKeys.size(); ++i) {
    if (m_table.GetEntries()[i].text == kLanguageKeys[i].english) {
      ++same;
    }
  }
  EXPECT_LE(same, 3U);  // The product's name; in French "Attention" and "Contacts" too.
}

TEST_P(Translation, KeepsTheNamesOfFolders) {
  for (const resources::Text& text :
       {resources::kNoProgramFilesFolder, resources::kNoMakerFolder, resources::kNoInstallFolder,
        resources::kNoWaveFolder, resources::kNoTemplateFolder}) {
    const std::u16string_view english = text.GetEnglish();
    const std::u16string folder(english.substr(english.find(u'\\')));
    EXPECT_TRUE(TextOf(text).ends_with(folder));
  }
}

TEST_P(Translation, SeparatesTheLimitFromItsNumber) {
  EXPECT_TRUE(TextOf(resources::kTagLimit).ends_with(u'\u00A0'));
}

TEST_P(Translation, FitsTheButtonsAndLabelsOfTheLearningPage) {
  EXPECT_LE(TextWidth(TextOf(resources::kRecordButton)), ButtonRoom(50));
  for (const resources::Text& text : {resources::kPlayButton, resources::kDeleteButton,
                                      resources::kDeleteAllButton, resources::kTestButton}) {
    EXPECT_LE(TextWidth(TextOf(text)), ButtonRoom(35));
  }
  EXPECT_LE(TextWidth(TextOf(resources::kContactsLabel)), LabelRoom(40));
  EXPECT_LE(TextWidth(TextOf(resources::kLearnedCommands) + u" 100"), LabelRoom(89));
}

INSTANTIATE_TEST_SUITE_P(Languages, Translation, testing::Values("de", "fr", "es", "ru", "zh-Hans"),
                         [](const testing::TestParamInfo<std::string>& language) {
                           std::string name = language.param;
                           std::erase(name, '-');
                           return name;
                         });

}  // namespace
