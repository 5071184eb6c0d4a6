#include "backends/qt/strings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using qt::ChooseMnemonics;
using qt::WithMnemonic;
using testing::ElementsAre;
using testing::Optional;

TEST(Mnemonics, TakeInitialsFirst) {
  EXPECT_THAT(ChooseMnemonics({"Play", "Delete", "Delete All", "Test"}),
              ElementsAre(Optional(0), Optional(0), Optional(7), Optional(0)));
}

TEST(Mnemonics, TakeAnyOtherLetterIfTheInitialsAreTaken) {
  EXPECT_THAT(ChooseMnemonics({"Testen", "Tauschen"}), ElementsAre(Optional(0), Optional(1)));
}

TEST(Mnemonics, TakeNoLetterTwiceWhateverItsCase) {
  EXPECT_THAT(ChooseMnemonics({"ab", "B A"}), ElementsAre(Optional(0), Optional(0)));
  EXPECT_THAT(ChooseMnemonics({"a", "A"}), ElementsAre(Optional(0), std::nullopt));
}

TEST(Mnemonics, AreLettersOfTheTextsOwnAlphabet) {
  EXPECT_THAT(ChooseMnemonics({QString::fromUtf16(u"Слушать"), QString::fromUtf16(u"Стереть"),
                               QString::fromUtf16(u"сс"), QString::fromUtf16(u"Λήψη")}),
              ElementsAre(Optional(0), Optional(1), std::nullopt, Optional(0)));
}

// A sign of these scripts is typed by several keys, and so no key presses the button.
TEST(Mnemonics, OfATextWithoutAnAlphabetAreWhatItNamesInBrackets) {
  EXPECT_THAT(ChooseMnemonics({QString::fromUtf16(u"录音"), QString::fromUtf16(u"录音(R)"), ""}),
              ElementsAre(std::nullopt, Optional(3), std::nullopt));
}

TEST(Mnemonics, PassOverLettersWithAccents) {
  EXPECT_THAT(ChooseMnemonics({QString::fromUtf16(u"Écouter"), QString::fromUtf16(u"Йод")}),
              ElementsAre(Optional(1), Optional(1)));
}

TEST(Mnemonics, LeaveAnAmpersandOfTheTextAsItStands) {
  EXPECT_EQ(WithMnemonic("Save & Go", 7), "Save && &Go");
  EXPECT_EQ(WithMnemonic("R&D", std::nullopt), "R&&D");
}

}  // namespace
