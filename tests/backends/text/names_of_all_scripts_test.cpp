#include <gtest/gtest.h>

#include "backends/text/names.h"

namespace {

using text::FoldName;
using text::MatchesPattern;
using text::SameName;

TEST(NamesOfAllScripts, CaseCountsForNothing) {
  EXPECT_TRUE(SameName(u"ÄÖÜ Ñ Ø", u"äöü ñ ø"));
  EXPECT_TRUE(SameName(u"ИМЕНА", u"имена"));
  EXPECT_TRUE(SameName(u"ΣΑΣ", u"σας"));
  EXPECT_TRUE(SameName(u"\U00010400", u"\U00010428"));
}

TEST(NamesOfAllScripts, NoCharacterEqualsTwo) {
  EXPECT_FALSE(SameName(u"straße", u"STRASSE"));
  EXPECT_TRUE(SameName(u"ß", u"\u1E9E"));
}

TEST(NamesOfAllScripts, PatternsFoldAsNamesDo) {
  EXPECT_TRUE(MatchesPattern(u"МАМА.WAV", u"м?м*.wav"));
}

TEST(NamesOfAllScripts, FoldingKeepsTheNumberOfUnits) {
  for (char32_t unit = 0; unit < 0x10000; ++unit) {
    const std::u16string name(1, static_cast<char16_t>(unit));
    ASSERT_EQ(FoldName(name).size(), 1U) << static_cast<unsigned>(unit);
    ASSERT_TRUE(SameName(name, FoldName(name))) << static_cast<unsigned>(unit);
  }
}

}  // namespace
