#include "backends/text/say.h"

#include <gtest/gtest.h>

#include "resources/report_strings.h"
#include "resources/translations.h"

namespace text {
namespace {

TEST(Say, PutsEachFillingIntoItsPlace) {
  EXPECT_EQ(Say(u"%2 after %1", {"a", "b"}), "b after a");
  EXPECT_EQ(Say(u"%1 and %1", {"a"}), "a and a");
}

TEST(Say, AFillingMayHoldAPlaceItself) {
  EXPECT_EQ(Say(u"%1, %2", {"/home/%2", "100%"}), "/home/%2, 100%");
}

TEST(Say, APlaceWithoutAFillingStaysAsItIs) {
  EXPECT_EQ(Say(u"%1 of 100% and %2%", {"a"}), "a of 100% and %2%");
  EXPECT_EQ(Say(u"%0 %x %"), "%0 %x %");
}

TEST(Say, FaultsAreInTheLanguageOfAProgramThatChoseOneAndElseInEnglish) {
  EXPECT_EQ(Say(resources::kEntryNotRead, {"4711", Say(resources::kDiskFull)}),
            "the entry of tag 4711 cannot be read: the disk is full");
  resources::ChooseLanguage("de");
  EXPECT_EQ(Say(resources::kEntryNotRead, {"4711", Say(resources::kDiskFull)}),
            "der Eintrag des Anrufnamens 4711 lässt sich nicht lesen: der Datenträger ist voll");
  resources::ChooseLanguage({});
}

}  // namespace
}  // namespace text
