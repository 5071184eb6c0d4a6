#include "backends/vcard/charset.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace vcard {
namespace {

using testing::ElementsAre;

std::vector<std::string> Split(std::string_view value, Commas commas = Commas::kKept) {
  std::vector<std::string> components = {"of", "the", "line", "before", "this", "one"};
  SplitValue(value, commas, components);
  return components;
}

TEST(Escapes, AValueIsCutAtItsSemicolons) {
  EXPECT_THAT(Split(""), ElementsAre(""));
  EXPECT_THAT(Split("Lee;Ann"), ElementsAre("Lee", "Ann"));
  EXPECT_THAT(Split(";;Ann;"), ElementsAre("", "", "Ann", ""));
}

TEST(Escapes, ABackslashKeepsWhatItStandsBefore) {
  EXPECT_THAT(Split("a\\;b;c\\,d\\\\;e\\:f"), ElementsAre("a;b", "c,d\\", "e:f"));
}

TEST(Escapes, EveryWayToWriteALineBreakIsOne) {
  EXPECT_THAT(Split("a\\nb\\Nc\\rd\\Re"), ElementsAre("a\nb\nc\nd\ne"));
}

TEST(Escapes, ABackslashBeforeAnythingElseStandsForItself) {
  EXPECT_THAT(Split("C:\\Path\\x;\\"), ElementsAre("C:\\Path\\x", "\\"));
}

TEST(Escapes, QuotedPrintableIsDecoded) {
  EXPECT_EQ(DecodeQuotedPrintable("M=C3=bcller=20=3D"), "M\xC3\xBCller =");
}

TEST(Escapes, WhatIsNoQuotedPrintableStandsForItself) {
  EXPECT_EQ(DecodeQuotedPrintable("=;=4;=G1;=1G;=4"), "=;=4;=G1;=1G;=4");
}

TEST(Escapes, Base64IsDecoded) {
  EXPECT_EQ(DecodeBase64(""), "");
  EXPECT_EQ(DecodeBase64("TGVl"), "Lee");
  EXPECT_EQ(DecodeBase64("TGU="), "Le");
  EXPECT_EQ(DecodeBase64("TA=="), "L");
  EXPECT_EQ(DecodeBase64("T G\tVl "), "Lee");
  EXPECT_EQ(DecodeBase64("+/8="), "\xFB\xFF");
}

TEST(Escapes, WhatIsNoBase64IsNothing) {
  EXPECT_EQ(DecodeBase64("TG=Vl"), std::nullopt);
  EXPECT_EQ(DecodeBase64("Lee;Ann"), std::nullopt);
}

TEST(Escapes, CommasBetweenNamesAreBlanks) {
  EXPECT_THAT(Split("a,b;c\\,d;e, f;g,", Commas::kBlanks), ElementsAre("a b", "c,d", "e, f", "g "));
}

TEST(Escapes, PercentsAreDecoded) {
  EXPECT_EQ(DecodePercents("%2B1%20555%ff"), "+1 555\xFF");
  EXPECT_EQ(DecodePercents("100%;%2;%zz%2"), "100%;%2;%zz%2");
}

// Two characters of JIS X 0208, in a text that ends without going back to ASCII.
TEST(DecodeText, ATextThatEndsWithinAnotherSetLeavesTheNextOneAsItIs) {
  EXPECT_EQ(DecodeText("\x1B$B;3ED", "ISO-2022-JP").text, "山田");
  EXPECT_EQ(DecodeText("Lee", "ISO-2022-JP").text, "Lee");
}

TEST(DecodeText, TextsOfSeveralSetsMayComeInAnyOrder) {
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(DecodeText("M\xFCller", "ISO-8859-1").text, "Müller");
    EXPECT_EQ(DecodeText("\xE9\xF7\xE1\xEE", "KOI8-R").text, "ИВАН");
    EXPECT_EQ(DecodeText("M\xC3\xBCller", "utf-8").text, "Müller");
    EXPECT_EQ(DecodeText("M\xFCller").text, "Müller");
  }
}

TEST(DecodeText, KnowsWhetherFormerVersionsReadTheSame) {
  for (const std::string_view charset : {"", "UTF-8", "ISO-8859-1", "ISO-2022-JP", "UTF-7"}) {
    for (const std::string_view text :
         {"Lee", "M\xC3\xBCller", "M\xFCller", "\xC3\xBC\xFC", "\x81", "\x1B$B;3ED"}) {
      const DecodedText decoded = DecodeText(text, charset);
      EXPECT_TRUE(!decoded.isAsBefore || decoded.text == FormerUtf8(text, charset))
          << charset << " " << text;
    }
  }
}

}  // namespace
}  // namespace vcard
