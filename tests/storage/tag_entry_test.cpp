#include "storage/tag_entry.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/support/registry_access.h"

namespace storage {

using platform::RegistryType;
using platform::RegistryValue;
using support::Utf16Bytes;

namespace {

std::u16string TextOf(std::u16string_view stored, RegistryType type = RegistryType::kString) {
  return TextOfValue({type, Utf16Bytes(stored)});
}

}  // namespace

TEST(TagEntry, AValueIsTheTextAndZerosToOneHundredBytes) {
  const auto bytes = ToTagValue(u"Mobile");
  auto expected = Utf16Bytes(u"Mobile");
  expected.resize(100);
  EXPECT_EQ(bytes, expected);
}

TEST(TagEntry, AnEmptyTextIsOneHundredZeros) {
  EXPECT_EQ(ToTagValue(u""), std::vector<std::byte>(100));
}

TEST(TagEntry, ATextThatLeavesNoRoomForTheTerminatorIsCut) {
  const std::u16string text(60, u'x');
  auto expected = Utf16Bytes(text.substr(0, 49));
  expected.resize(100);
  EXPECT_EQ(ToTagValue(text), expected);
  EXPECT_EQ(ToTagValue(text.substr(0, 49)), expected);
}

TEST(TagEntry, TheCutNeverDividesOneCharacter) {
  const std::u16string text = std::u16string(48, u'x') + u"\xD83D\xDE00";
  auto expected = Utf16Bytes(text.substr(0, 48));
  expected.resize(100);
  EXPECT_EQ(ToTagValue(text), expected);
}

TEST(TagEntry, ATextIsReadUpToItsFirstZero) {
  EXPECT_EQ(TextOf(std::u16string_view(u"Home\0Mobile\0", 12)), u"Home");
  EXPECT_EQ(TextOf(std::u16string_view(u"\0Home", 5)), u"");
}

TEST(TagEntry, ATextWithoutATerminatorIsReadWhole) { EXPECT_EQ(TextOf(u"Home2"), u"Home2"); }

TEST(TagEntry, ATextOfAnyLengthIsReadWhole) {
  const std::u16string text(5000, u'x');
  EXPECT_EQ(TextOf(text), text);
}

TEST(TagEntry, HalfACharacterAtTheEndIsDropped) {
  RegistryValue value{RegistryType::kString, Utf16Bytes(u"Car")};
  value.bytes.push_back(std::byte{0x41});
  EXPECT_EQ(TextOfValue(value), u"Car");
}

TEST(TagEntry, AnEmptyValueIsTheEmptyText) { EXPECT_EQ(TextOf(u""), u""); }

TEST(TagEntry, AValueOfAnotherTypeIsNoText) {
  for (const auto type : {RegistryType::kNone, RegistryType::kBinary, RegistryType::kDword}) {
    EXPECT_EQ(TextOf(u"17", type), u"");
  }
}

TEST(ParseOid, ReadsEveryNumberOfThirtyTwoBits) {
  EXPECT_EQ(ParseOid(u"0"), 0);
  EXPECT_EQ(ParseOid(u"17"), 17);
  EXPECT_EQ(ParseOid(u"-17"), -17);
  EXPECT_EQ(ParseOid(u"+17"), 17);
  EXPECT_EQ(ParseOid(u"2147483647"), 2147483647);
  EXPECT_EQ(ParseOid(u"-2147483648"), std::numeric_limits<std::int32_t>::min());
}

TEST(ParseOid, StopsBehindTheDigits) {
  EXPECT_EQ(ParseOid(u" \t42 and more"), 42);
  EXPECT_EQ(ParseOid(u"0042"), 42);
}

TEST(ParseOid, WhatIsNoNumberNamesNobody) {
  for (const auto* const text : {u"", u" ", u"-", u"+", u"--1", u"- 1", u"x1", u"\u0661"}) {
    EXPECT_FALSE(ParseOid(text)) << support::Utf16Bytes(text).size();
  }
}

TEST(ParseOid, ANumberThatDoesNotFitNamesNobody) {
  EXPECT_FALSE(ParseOid(u"2147483648"));
  EXPECT_FALSE(ParseOid(u"-2147483649"));
  EXPECT_FALSE(ParseOid(std::u16string(400, u'9')));
}

}  // namespace storage
