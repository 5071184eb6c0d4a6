#include "backends/text/names.h"

#include <gtest/gtest.h>

namespace {

using text::FoldName;
using text::HasWildcards;
using text::MatchesPattern;
using text::SameName;

TEST(Names, CaseOfAsciiLettersCountsForNothing) {
  EXPECT_TRUE(SameName(u"Voxtrel_WAV", u"vOXTREL_wav"));
  EXPECT_TRUE(SameName(u"", u""));
  EXPECT_FALSE(SameName(u"a", u"b"));
}

TEST(Names, OnlyLettersHaveCase) {
  EXPECT_FALSE(SameName(u"@", u"`"));
  EXPECT_FALSE(SameName(u"[", u"{"));
}

TEST(Names, ANameDiffersFromItsBeginning) {
  EXPECT_FALSE(SameName(u"abc", u"ab"));
  EXPECT_FALSE(SameName(u"ab", u"abc"));
  EXPECT_FALSE(SameName(u"", u"a"));
}

TEST(Names, FoldedNamesAreEqualExactlyIfTheNamesAreTheSame) {
  EXPECT_EQ(FoldName(u"12345.WAV"), FoldName(u"12345.wav"));
  EXPECT_NE(FoldName(u"12345.wav"), FoldName(u"12345.wax"));
  EXPECT_EQ(FoldName(FoldName(u"ABC")), FoldName(u"ABC"));
}

TEST(Names, AnUnpairedSurrogateIsACharacterLikeAnyOther) {
  const std::u16string high{u'a', char16_t{0xD801}};
  const std::u16string low{u'A', char16_t{0xDC80}};
  EXPECT_TRUE(SameName(high, high));
  EXPECT_FALSE(SameName(high, low));
  EXPECT_EQ(FoldName(low), (std::u16string{u'a', char16_t{0xDC80}}));
}

TEST(Names, APatternWithoutWildcardsMatchesItselfInAnyCase) {
  EXPECT_TRUE(MatchesPattern(u"Voxtrel.lng", u"VOXTREL.LNG"));
  EXPECT_FALSE(MatchesPattern(u"Voxtrel.lng", u"Voxtrel.ln"));
  EXPECT_FALSE(MatchesPattern(u"Voxtrel.ln", u"Voxtrel.lng"));
}

TEST(Names, AStarMatchesAnyRunAlsoAnEmptyOne) {
  EXPECT_TRUE(MatchesPattern(u"123.wav", u"*.wav"));
  EXPECT_TRUE(MatchesPattern(u".wav", u"*.wav"));
  EXPECT_TRUE(MatchesPattern(u"a.wav.wav", u"*.wav"));
  EXPECT_TRUE(MatchesPattern(u"", u"*"));
  EXPECT_TRUE(MatchesPattern(u"abc", u"a**c"));
  EXPECT_TRUE(MatchesPattern(u"abc", u"abc*"));
  EXPECT_FALSE(MatchesPattern(u"123.wave", u"*.wav"));
  EXPECT_FALSE(MatchesPattern(u"123wav", u"*.wav"));
}

TEST(Names, AStarIsTriedAgainIfTheRestDoesNotFit) {
  EXPECT_TRUE(MatchesPattern(u"abcabd", u"*abd"));
  EXPECT_TRUE(MatchesPattern(u"aXbXc", u"a*X*c"));
  EXPECT_FALSE(MatchesPattern(u"aXbXd", u"a*X*c"));
}

TEST(Names, ManyStarsAgainstALongNameStayCheap) {
  std::u16string pattern;
  for (int i = 0; i < 64; ++i) {
    pattern += u"*a";
  }
  EXPECT_FALSE(MatchesPattern(std::u16string(4000, u'a'), pattern + u"b"));
  EXPECT_TRUE(MatchesPattern(std::u16string(4000, u'a'), pattern));
}

TEST(Names, AQuestionMarkMatchesExactlyOneCharacter) {
  EXPECT_TRUE(MatchesPattern(u"a1", u"a?"));
  EXPECT_FALSE(MatchesPattern(u"a", u"a?"));
  EXPECT_FALSE(MatchesPattern(u"a12", u"a?"));
  EXPECT_TRUE(MatchesPattern(u"\U0001F600", u"?"));
  EXPECT_FALSE(MatchesPattern(u"\U0001F600", u"??"));
}

TEST(Names, AStarNeverEndsInsideASurrogatePair) {
  const std::u16string lowHalf{u'*', char16_t{0xDE00}};
  EXPECT_FALSE(MatchesPattern(u"\U0001F600", lowHalf));
}

TEST(Names, WildcardsAreSeenAnywhere) {
  EXPECT_TRUE(HasWildcards(u"*.st"));
  EXPECT_TRUE(HasWildcards(u"a?"));
  EXPECT_FALSE(HasWildcards(u"a.st"));
}

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
