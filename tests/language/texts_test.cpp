#include "language/texts.h"

#include <gtest/gtest.h>

#include <limits>

#include "language/language_table.h"
#include "tests/language/language_bytes.h"

namespace {

using language::CountLabel;
using language::FormatNumber;
using language::LanguageTable;
using language::Texts;

TEST(Texts, AreTheBuiltInEnglishWithoutALanguageFile) {
  const Texts texts;
  EXPECT_FALSE(texts.IsLanguageFileLoaded());
  EXPECT_EQ(texts(resources::kLearningTab), u"Learning");
  EXPECT_EQ(texts(resources::kSheetCaption), u"Property");
  EXPECT_FALSE(Texts(nullptr).IsLanguageFileLoaded());
}

TEST(Texts, AreThoseOfTheLanguageFileOnceItIsLoaded) {
  LanguageTable table;
  table.LoadFrom(FileOf(u"ID_TAB_2 Lernen\r\n"));
  const Texts texts(&table);
  EXPECT_TRUE(texts.IsLanguageFileLoaded());
  EXPECT_EQ(texts(resources::kLearningTab), u"Lernen");
}

TEST(Texts, AreEmptyForAKeyThatTheLanguageFileLacks) {
  LanguageTable table;
  table.LoadFrom(FileOf(u"ID_TAB_2 Lernen\r\n"));
  EXPECT_EQ(Texts(&table)(resources::kAboutTab), u"");
}

TEST(Texts, AreAllEmptyWithABrokenLanguageFile) {
  LanguageTable table;
  table.LoadFrom(Bytes("ID_TAB_2 Learning\r\n"));
  EXPECT_EQ(Texts(&table)(resources::kLearningTab), u"");
}

TEST(Texts, DifferInEnglishIfOneKeyIsWordedInTwoWays) {
  const Texts english;
  EXPECT_EQ(english(resources::kTemplateNotCreated), u"Error in CreateFile");
  EXPECT_EQ(english(resources::kReinitTemplateNotCreated), u"ERROR in CreateFile");
  LanguageTable table;
  table.LoadFrom(FileOf(u"ID_S_MESSAGE_7 Datei!\r\n"));
  const Texts german(&table);
  EXPECT_EQ(german(resources::kTemplateNotCreated), u"Datei!");
  EXPECT_EQ(german(resources::kReinitTemplateNotCreated), u"Datei!");
}

TEST(FormatNumber, PutsTheNumberInPlaceOfThePlaceholder) {
  EXPECT_EQ(FormatNumber(u"Learned commands: %d", 7), u"Learned commands: 7");
  EXPECT_EQ(FormatNumber(u"%d", -1), u"-1");
  EXPECT_EQ(FormatNumber(u"%d!", std::numeric_limits<std::int32_t>::min()), u"-2147483648!");
}

TEST(FormatNumber, ShowsAFormatWithoutPlaceholderAsItStands) {
  EXPECT_EQ(FormatNumber(u"Learned", 7), u"Learned");
  EXPECT_EQ(FormatNumber(u"", 7), u"");
}

TEST(FormatNumber, InterpretsNothingButTheFirstPlaceholder) {
  EXPECT_EQ(FormatNumber(u"%s %n %5d %% %d %d %", 7), u"%s %n %5d %% 7 %d %");
}

TEST(CountLabel, IsEnglishWithoutALanguageFile) {
  EXPECT_EQ(CountLabel(Texts(), 3), u"Learned commands: 3");
}

TEST(CountLabel, JoinsTheWordsOfTheLanguageFileAndTheCountWithOneBlank) {
  LanguageTable table;
  table.LoadFrom(FileOf(u"ID_S_MESSAGE_L Gelernte Namen:\r\n"));
  EXPECT_EQ(CountLabel(Texts(&table), 12), u"Gelernte Namen: 12");
}

TEST(CountLabel, IsABlankAndTheCountIfTheLanguageFileLacksTheKey) {
  const LanguageTable table;
  EXPECT_EQ(CountLabel(Texts(&table), 12), u" 12");
}

TEST(CountLabel, ShowsPercentSignsOfALanguageFileAsTheyStand) {
  LanguageTable table;
  table.LoadFrom(FileOf(u"ID_S_MESSAGE_L %d%s%n\r\n"));
  EXPECT_EQ(CountLabel(Texts(&table), 12), u"%d%s%n 12");
}

TEST(CountLabel, IsEnglishAfterTheDeletionOfOneTag) {
  EXPECT_EQ(language::EnglishCountLabel(2), u"Learned commands: 2");
}

TEST(TagLimitMessage, EndsWithTheLimit) {
  EXPECT_EQ(language::TagLimitMessage(Texts(), 100), u"Tags number exceeds limit: 100");
}

TEST(TagLimitMessage, JoinsTheLimitDirectlyToTheTextOfTheLanguageFile) {
  LanguageTable table;
  table.LoadFrom(FileOf(u"ID_S_MESSAGE_EX Zu viele:  \r\n"));
  EXPECT_EQ(language::TagLimitMessage(Texts(&table), 100), u"Zu viele:100");
}

TEST(NoVoiceTagsMessage, IsTwoParagraphs) {
  EXPECT_EQ(language::NoVoiceTagsMessage(Texts()),
            u"There are no voice tags.\n\nTo record voice tags select Start -> Settings -> System "
            u"tab -> Zedra Voxtrel.");
  LanguageTable table;
  table.LoadFrom(FileOf(u"ID_S_MESSAGE_NOCOM1 Eins\r\nID_S_MESSAGE_NOCOM2 Zwei\r\n"));
  EXPECT_EQ(language::NoVoiceTagsMessage(Texts(&table)), u"Eins\n\nZwei");
}

}  // namespace
