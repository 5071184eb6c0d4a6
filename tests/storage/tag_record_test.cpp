#include "storage/tag_record.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <memory>
#include <utility>

#include "tests/support/registry_access.h"

namespace storage {

using platform::RegistryType;
using platform::RegistryValue;
using support::Utf16Bytes;

namespace {

const std::u16string kPair{char16_t{0xD83D}, char16_t{0xDE00}};

std::unique_ptr<TagTable> TableOf(std::int32_t count) {
  auto table = std::make_unique<TagTable>();
  for (std::int32_t i = 0; i < count; ++i) {
    table->GetRecord(i)->SetTagName(TagNameOfTickCount(static_cast<std::uint32_t>(i)));
    table->GetRecord(i)->SetDisplayText(u"text " +
                                        TagNameOfTickCount(static_cast<std::uint32_t>(i)));
  }
  table->tagCount = count;
  return table;
}

std::u16string TextOf(std::u16string_view stored, RegistryType type = RegistryType::kString) {
  return TextOfValue({type, Utf16Bytes(stored)});
}

}  // namespace

TEST(TagRecord, IsEmptyAtFirst) {
  const TagRecord record;
  EXPECT_EQ(record.GetTagName(), u"");
  EXPECT_EQ(record.GetDisplayText(), u"");
}

TEST(TagRecord, HoldsItsFieldsInOrderWithNothingBetween) {
  static_assert(sizeof(TagRecord) == (20 + 128) * sizeof(char16_t));
  static_assert(offsetof(TagRecord, tagName) == 0);
  static_assert(offsetof(TagRecord, displayText) == 20 * sizeof(char16_t));
}

TEST(TagRecord, KeepsANameThatLeavesRoomForTheTerminator) {
  TagRecord record;
  record.SetTagName(std::u16string(19, u'1'));
  EXPECT_EQ(record.GetTagName(), std::u16string(19, u'1'));
  EXPECT_EQ(record.tagName.back(), u'\0');
}

TEST(TagRecord, CutsALongerNameThere) {
  TagRecord record;
  record.SetTagName(std::u16string(30, u'1'));
  EXPECT_EQ(record.GetTagName(), std::u16string(19, u'1'));
}

TEST(TagRecord, CutsATextAt127Units) {
  TagRecord record;
  record.SetDisplayText(std::u16string(127, u'x'));
  EXPECT_EQ(record.GetDisplayText().size(), 127U);
  record.SetDisplayText(std::u16string(128, u'x'));
  EXPECT_EQ(record.GetDisplayText().size(), 127U);
  EXPECT_EQ(record.displayText.back(), u'\0');
}

TEST(TagRecord, NeverCutsBetweenTheTwoUnitsOfOneCharacter) {
  TagRecord record;
  record.SetDisplayText(std::u16string(126, u'x') + kPair);
  EXPECT_EQ(record.GetDisplayText(), std::u16string(126, u'x'));
  record.SetDisplayText(std::u16string(125, u'x') + kPair + u"y");
  EXPECT_EQ(record.GetDisplayText(), std::u16string(125, u'x') + kPair);
}

TEST(TagRecord, CutsBesideAUnitThatIsHalfOfNothing) {
  TagRecord record;
  const std::u16string lone(1, char16_t{0xD83D});
  record.SetDisplayText(std::u16string(126, u'x') + lone + u"y");
  EXPECT_EQ(record.GetDisplayText(), std::u16string(126, u'x') + lone);
}

TEST(TagRecord, AShorterTextLeavesNothingOfALongerOne) {
  TagRecord record;
  record.SetDisplayText(u"a longer text");
  record.SetDisplayText(u"short");
  EXPECT_EQ(record.GetDisplayText(), u"short");
  EXPECT_EQ(record.displayText[6], u'\0');
}

TEST(TagRecord, ATextEndsAtItsFirstZero) {
  TagRecord record;
  record.SetDisplayText(std::u16string_view(u"ab\0cd", 5));
  EXPECT_EQ(record.GetDisplayText(), u"ab");
  EXPECT_EQ(record.displayText[3], u'\0');
}

TEST(TagTable, HasRoomForExactlyOneHundred) {
  TagTable table;
  EXPECT_EQ(table.tagCount, 0);
  EXPECT_NE(table.GetRecord(0), nullptr);
  EXPECT_NE(table.GetRecord(99), nullptr);
  EXPECT_EQ(table.GetRecord(100), nullptr);
  EXPECT_EQ(table.GetRecord(-1), nullptr);
  EXPECT_EQ(std::as_const(table).GetRecord(100), nullptr);
}

TEST(TagTable, RemovingARecordMovesTheLaterOnesDown) {
  const auto table = TableOf(4);
  table->Remove(1);
  EXPECT_EQ(table->tagCount, 3);
  EXPECT_EQ(table->GetRecord(0)->GetTagName(), u"0");
  EXPECT_EQ(table->GetRecord(1)->GetTagName(), u"2");
  EXPECT_EQ(table->GetRecord(1)->GetDisplayText(), u"text 2");
  EXPECT_EQ(table->GetRecord(2)->GetTagName(), u"3");
  EXPECT_EQ(table->GetRecord(3)->GetTagName(), u"");
}

TEST(TagTable, RemovingFromAFullTableEmptiesTheLastPlace) {
  const auto table = TableOf(kMaxTags);
  table->Remove(99);
  EXPECT_EQ(table->GetRecord(98)->GetTagName(), u"98");
  EXPECT_EQ(table->GetRecord(99)->GetTagName(), u"");
  table->tagCount = kMaxTags;
  table->Remove(0);
  EXPECT_EQ(table->GetRecord(0)->GetTagName(), u"1");
  EXPECT_EQ(table->GetRecord(99)->GetTagName(), u"");
}

TEST(TagTable, ARecordThatIsNotThereCannotBeRemoved) {
  const auto table = TableOf(2);
  table->Remove(2);
  table->Remove(-1);
  table->Remove(kMaxTags);
  EXPECT_EQ(table->tagCount, 2);
  EXPECT_EQ(table->GetRecord(1)->GetTagName(), u"1");
}

TEST(TagTable, ACountBeyondTheRoomIsNoRecord) {
  const auto table = TableOf(kMaxTags);
  table->tagCount = 150;
  table->Remove(120);
  EXPECT_EQ(table->tagCount, 150);
  table->Remove(99);
  EXPECT_EQ(table->tagCount, 149);
}

TEST(TagTable, ClearingEmptiesEveryRecord) {
  const auto table = TableOf(3);
  table->Clear();
  EXPECT_EQ(table->tagCount, 0);
  EXPECT_EQ(table->GetRecord(0)->GetTagName(), u"");
}

TEST(TagNameOfTickCount, IsTheSignedDecimalTextWithoutPadding) {
  EXPECT_EQ(TagNameOfTickCount(0), u"0");
  EXPECT_EQ(TagNameOfTickCount(2147483647), u"2147483647");
  EXPECT_EQ(TagNameOfTickCount(2147483648U), u"-2147483648");
  EXPECT_EQ(TagNameOfTickCount(4294967295U), u"-1");
}

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
