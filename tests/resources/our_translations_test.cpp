#include <gtest/gtest.h>

#include "resources/desktop_strings.h"
#include "resources/fault_strings.h"
#include "resources/language_keys.h"
#include "resources/panel_strings.h"
#include "resources/translations.h"

namespace resources {
namespace {

/// English again when a test has ended.
class Translations : public testing::Test {
 protected:
  ~Translations() override { ChooseLanguage({}); }
};

TEST_F(Translations, ALocaleFindsItsLanguageWhateverCountryAndCharacterSetItNames) {
  EXPECT_EQ(FindLanguage("de_AT.UTF-8"), "de");
  EXPECT_EQ(FindLanguage("fr"), "fr");
  EXPECT_EQ(FindLanguage("es-419"), "es");
  EXPECT_EQ(FindLanguage("ru_RU@euro"), "ru");
  EXPECT_EQ(FindLanguage("zh_CN.GB18030"), "zh-Hans");
  EXPECT_EQ(FindLanguage("zh-Hans-SG"), "zh-Hans");
}

TEST_F(Translations, TraditionalChineseIsNoSimplifiedChinese) {
  EXPECT_EQ(FindLanguage("zh_TW.UTF-8"), "");
  EXPECT_EQ(FindLanguage("zh-Hant-HK"), "");
}

TEST_F(Translations, ALanguageThatWeLackIsNone) {
  EXPECT_EQ(FindLanguage("en_US"), "");
  EXPECT_EQ(FindLanguage("C"), "");
  EXPECT_EQ(FindLanguage(""), "");
  EXPECT_EQ(FindLanguage("den_XX"), "") << "a longer name that begins like one of ours";
}

TEST_F(Translations, ATextIsShownInTheChosenLanguage) {
  ChooseLanguage("de");
  EXPECT_EQ(Say(kHideLabel), u"Ausblenden");
  ChooseLanguage("ru");
  EXPECT_EQ(Say(kHideLabel), u"Скрыть");
}

TEST_F(Translations, WithoutALanguageATextIsEnglish) {
  EXPECT_EQ(Say(kNotKept), kNotKept);
  ChooseLanguage("tlh");
  EXPECT_EQ(Say(kNotKept), kNotKept);
}

// The dialogs show what stands in their templates, and a page in use gives it the text of its key.
TEST_F(Translations, ATextThatLanguageFilesHaveAKeyForIsNoneOfOurs) {
  for (const std::string_view language : kLanguages) {
    ChooseLanguage(language);
    for (const LanguageKey& row : kLanguageKeys) {
      EXPECT_EQ(Say(row.english), row.english) << language;
    }
  }
}

TEST_F(Translations, WhatIsNoTextOfOursStaysAsItIs) {
  ChooseLanguage("fr");
  EXPECT_EQ(Say(u"Anna Berg"), u"Anna Berg");
  EXPECT_EQ(Say(u""), u"");
}

}  // namespace
}  // namespace resources
