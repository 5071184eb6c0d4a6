#include "backends/vcard/content_line.h"

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

}  // namespace
}  // namespace vcard
