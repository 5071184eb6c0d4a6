#include "language/texts.h"

#include <gtest/gtest.h>

#include "language/language_table.h"
#include "tests/language/language_bytes.h"

namespace {

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

TEST(Texts, DifferInEnglishWhereOneKeyIsWordedInTwoWays) {
  const Texts english;
  EXPECT_EQ(english(resources::kTemplateNotCreated), u"Error in CreateFile");
  EXPECT_EQ(english(resources::kReinitTemplateNotCreated), u"ERROR in CreateFile");
  LanguageTable table;
  table.LoadFrom(FileOf(u"ID_S_MESSAGE_7 Datei!\r\n"));
  const Texts german(&table);
  EXPECT_EQ(german(resources::kTemplateNotCreated), u"Datei!");
  EXPECT_EQ(german(resources::kReinitTemplateNotCreated), u"Datei!");
}

}  // namespace
