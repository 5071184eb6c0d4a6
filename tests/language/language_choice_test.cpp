#include "language/language_choice.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/language/language_bytes.h"
#include "tests/machine/memory_file_system.h"
#include "tests/support/results.h"
#include "tests/support/watched_file_system.h"

namespace {

using language::LanguageChoice;
using language::LanguageError;
using language::OwnFile;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::u16string_view kPlace = u"\\Program Files\\Voxtrel.lng";

class LanguageChoiceTest : public testing::Test {
 protected:
  LanguageChoiceTest() {
    for (const auto& [name, text] : {std::pair(u"Voxtrel.lng", u"ID_OK OK\r\n"),
                                     {u"Voxtrel.zh-Hans.lng", u"ID_OK 好\r\n"},
                                     {u"Voxtrel.de.lng", u"ID_OK Gut\r\n"},
                                     {u"Voxtrel.d e.lng", u"ID_OK ?\r\n"},
                                     {u"Other.fr.lng", u"ID_OK ?\r\n"}}) {
      EXPECT_TRUE(m_files.PutFile(std::u16string(u"/languages/") + name, FileOf(text)));
    }
    EXPECT_TRUE(m_files.PutFile(u"\\Program Files\\Other", {}));
  }

  void PutInPlace(std::u16string_view text) { ASSERT_TRUE(m_files.PutFile(kPlace, FileOf(text))); }
  [[nodiscard]] std::optional<std::vector<std::byte>> InPlace() const {
    return m_files.GetFile(kPlace);
  }

  machine::MemoryFileSystem m_files;
  support::WatchedFileSystem m_watched{m_files};
  LanguageChoice m_choice{m_watched, u"/languages", std::u16string(kPlace)};
};

TEST_F(LanguageChoiceTest, ListsTheLanguagesOfTheFolderByTheirNames) {
  EXPECT_THAT(m_choice.List(), ElementsAre("de", "zh-Hans"));
  EXPECT_THAT(LanguageChoice(m_files, u"/none", u"\\x").List(), IsEmpty());
}

TEST_F(LanguageChoiceTest, AChosenLanguageIsInPlaceAndEnglishTakesItAway) {
  EXPECT_EQ(m_choice.GetCurrent(), "");
  ASSERT_TRUE(m_choice.Choose("de", OwnFile::kStays));
  EXPECT_EQ(InPlace(), FileOf(u"ID_OK Gut\r\n"));
  EXPECT_EQ(m_choice.GetCurrent(), "de");
  ASSERT_TRUE(m_choice.Choose("zh-Hans", OwnFile::kStays));
  EXPECT_EQ(m_choice.GetCurrent(), "zh-Hans");
  ASSERT_TRUE(m_choice.Choose("", OwnFile::kStays));
  EXPECT_EQ(InPlace(), std::nullopt);
  EXPECT_EQ(m_choice.GetCurrent(), "");
  EXPECT_TRUE(m_choice.Choose("", OwnFile::kStays)) << "There is nothing to take away.";
}

TEST_F(LanguageChoiceTest, TheEnglishTemplateInPlaceIsEnglishAndGivesWay) {
  PutInPlace(u"ID_OK OK\r\n");
  EXPECT_EQ(m_choice.GetCurrent(), "");
  EXPECT_TRUE(m_choice.Choose("de", OwnFile::kStays));
}

TEST_F(LanguageChoiceTest, ATranslationOfTheUsersOwnStaysUnlessItMayGoAndIsKeptThen) {
  PutInPlace(u"ID_OK Jo\r\n");
  EXPECT_EQ(m_choice.GetCurrent(), std::nullopt);
  for (const auto* language : {"de", ""}) {
    EXPECT_EQ(support::ErrorOf(m_choice.Choose(language, OwnFile::kStays)),
              LanguageError::kOwnFile);
    EXPECT_EQ(InPlace(), FileOf(u"ID_OK Jo\r\n"));
  }
  const auto kept = m_choice.Choose("de", OwnFile::kMayGo);
  ASSERT_TRUE(kept);
  EXPECT_EQ(*kept, u"\\Program Files\\Voxtrel.lng.own1");
  EXPECT_EQ(m_files.GetFile(*kept), FileOf(u"ID_OK Jo\r\n"));
  EXPECT_EQ(m_choice.GetCurrent(), "de");

  PutInPlace(u"ID_OK Eh\r\n");
  EXPECT_EQ(m_choice.Choose("", OwnFile::kMayGo), u"\\Program Files\\Voxtrel.lng.own2");
  EXPECT_EQ(m_files.GetFile(*kept), FileOf(u"ID_OK Jo\r\n")) << "The first copy is there still.";
  EXPECT_EQ(InPlace(), std::nullopt);
}

TEST_F(LanguageChoiceTest, ALanguageThatIsNotThereChangesNothing) {
  PutInPlace(u"ID_OK Gut\r\n");
  EXPECT_EQ(support::ErrorOf(m_choice.Choose("fr", OwnFile::kMayGo)), LanguageError::kUnreadable);
  EXPECT_EQ(m_choice.GetCurrent(), "de");
}

TEST_F(LanguageChoiceTest, AFileInUseStaysAndIsReported) {
  PutInPlace(u"ID_OK Gut\r\n");
  const auto reader = m_files.Open(kPlace, {});
  ASSERT_TRUE(reader);
  EXPECT_EQ(support::ErrorOf(m_choice.Choose("zh-Hans", OwnFile::kStays)), LanguageError::kInUse);
  EXPECT_EQ(support::ErrorOf(m_choice.Choose("", OwnFile::kStays)), LanguageError::kInUse);
  EXPECT_EQ(InPlace(), FileOf(u"ID_OK Gut\r\n"));
}

TEST_F(LanguageChoiceTest, WhateverFailsEitherTheEarlierFileIsInPlaceOrTheNewOne) {
  for (const auto* language : {"de", ""}) {
    for (std::size_t call = 1;; ++call) {
      PutInPlace(u"ID_OK Jo\r\n");
      m_watched.FailCall(call, support::Failing::kOnce);
      const auto chosen = m_choice.Choose(language, OwnFile::kMayGo);
      const bool hasFailed = m_watched.HasFailed();
      m_watched.FailCall(0, support::Failing::kOnce);
      if (!chosen) {
        EXPECT_EQ(InPlace(), FileOf(u"ID_OK Jo\r\n")) << language << call;
      } else {
        EXPECT_EQ(m_choice.GetCurrent(), language) << call;
        EXPECT_EQ(m_files.GetFile(*chosen), FileOf(u"ID_OK Jo\r\n")) << language << call;
      }
      if (!hasFailed) {
        break;
      }
      static_cast<void>(m_files.Delete(std::u16string(kPlace) + u".own1"));
    }
  }
}

}  // namespace
