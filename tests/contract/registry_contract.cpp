#include "tests/contract/registry_contract.h"

#include <gmock/gmock.h>

#include <array>

#include "tests/support/registry_access.h"

namespace contract {

using platform::RegistryError;
using platform::RegistryType;
using platform::RegistryValue;
using support::KeyExists;
using support::Put;
using support::SubkeyNames;
using support::ValueNames;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const std::vector<std::byte> kSomeBytes{std::byte{1}, std::byte{0}, std::byte{2}};

}  // namespace

TEST_P(RegistryContract, ANewStoreHoldsNothingBelowItsRoot) {
  const auto root = Store().OpenKey(u"");
  ASSERT_EQ(root.error, RegistryError::kNone);
  EXPECT_THAT(SubkeyNames(*root.key), IsEmpty());
  EXPECT_THAT(ValueNames(*root.key), IsEmpty());
}

TEST_P(RegistryContract, ANewStoreIsGivenItsInitialKeysWithoutValues) {
  Make({u"Software\\Maker\\One", u"Software\\Maker\\Two"});
  EXPECT_THAT(SubkeyNames(Store(), u"Software\\Maker"), ElementsAre(u"One", u"Two"));
  EXPECT_THAT(ValueNames(*Store().OpenKey(u"Software\\Maker\\One").key), IsEmpty());
}

TEST_P(RegistryContract, AMissingKeyIsNotFound) {
  const auto opened = Store().OpenKey(u"Software");
  EXPECT_EQ(opened.error, RegistryError::kNotFound);
  EXPECT_EQ(opened.key, nullptr);
}

TEST_P(RegistryContract, CreatingAKeyMakesEveryKeyOnItsWay) {
  ASSERT_EQ(Store().CreateKey(u"a\\b\\c").error, RegistryError::kNone);
  EXPECT_TRUE(KeyExists(Store(), u"a"));
  EXPECT_TRUE(KeyExists(Store(), u"a\\b"));
  EXPECT_TRUE(KeyExists(Store(), u"a\\b\\c"));
}

TEST_P(RegistryContract, CreatingAKeyThatExistsOpensIt) {
  ASSERT_EQ(Put(Store(), u"a", u"v", RegistryType::kBinary, kSomeBytes), RegistryError::kNone);
  const auto again = Store().CreateKey(u"a");
  RegistryValue value;
  ASSERT_EQ(again.key->Query(u"v", value), RegistryError::kNone);
  EXPECT_EQ(value.bytes, kSomeBytes);
}

TEST_P(RegistryContract, KeyNamesAreComparedWithoutCaseAndKeptAsFirstWritten) {
  ASSERT_EQ(Store().CreateKey(u"Software\\Größe").error, RegistryError::kNone);
  ASSERT_EQ(Store().CreateKey(u"SOFTWARE\\GRÖßE\\x").error, RegistryError::kNone);
  EXPECT_THAT(SubkeyNames(Store(), u""), ElementsAre(u"Software"));
  EXPECT_TRUE(KeyExists(Store(), u"software\\größe\\X"));
}

TEST_P(RegistryContract, ValueNamesAreComparedWithoutCaseAndKeptAsFirstWritten) {
  ASSERT_EQ(Put(Store(), u"a", u"Phone Type", RegistryType::kString, {}), RegistryError::kNone);
  ASSERT_EQ(Put(Store(), u"a", u"PHONE TYPE", RegistryType::kBinary, kSomeBytes),
            RegistryError::kNone);
  const auto key = Store().OpenKey(u"a").key;
  EXPECT_THAT(ValueNames(*key), ElementsAre(u"Phone Type"));
  RegistryValue value;
  ASSERT_EQ(key->Query(u"phone type", value), RegistryError::kNone);
  EXPECT_EQ(value.type, RegistryType::kBinary);
  EXPECT_EQ(value.bytes, kSomeBytes);
}

TEST_P(RegistryContract, NamesThatAreNotWellFormedTextAreKeptUnitByUnit) {
  const std::u16string lone{u'x', char16_t{0xDC00}};
  const std::u16string otherLone{u'x', char16_t{0xD800}};
  ASSERT_EQ(Put(Store(), lone, otherLone, RegistryType::kNone, {}), RegistryError::kNone);
  EXPECT_FALSE(KeyExists(Store(), otherLone));
  EXPECT_THAT(SubkeyNames(Store(), u""), ElementsAre(lone));
  EXPECT_THAT(ValueNames(*Store().OpenKey(lone).key), ElementsAre(otherLone));
}

TEST_P(RegistryContract, AValueKeepsItsExactBytesAndType) {
  const auto key = Store().CreateKey(u"a").key;
  for (const std::size_t length : {std::size_t{0}, std::size_t{1}, std::size_t{3}, std::size_t{100},
                                   platform::kMaxValueBytes}) {
    std::vector<std::byte> bytes(length);
    for (std::size_t i = 0; i < length; ++i) {
      bytes[i] = static_cast<std::byte>(i * 7);
    }
    const auto type = static_cast<RegistryType>(0xFFFFFFFF - length);
    ASSERT_EQ(key->Set(u"v", type, bytes), RegistryError::kNone);
    RegistryValue value;
    ASSERT_EQ(key->Query(u"v", value), RegistryError::kNone);
    EXPECT_EQ(value.type, type);
    EXPECT_EQ(value.bytes, bytes) << length;
  }
}

TEST_P(RegistryContract, TheEmptyNameIsThatOfTheDefaultValue) {
  ASSERT_EQ(Put(Store(), u"a", u"", RegistryType::kBinary, kSomeBytes), RegistryError::kNone);
  EXPECT_EQ(support::BytesOf(Store(), u"a", u""), kSomeBytes);
  EXPECT_THAT(ValueNames(*Store().OpenKey(u"a").key), ElementsAre(u""));
}

TEST_P(RegistryContract, AMissingValueIsNotFoundAndLeavesTheOutputAlone) {
  const auto key = Store().CreateKey(u"a").key;
  RegistryValue value{RegistryType::kDword, kSomeBytes};
  EXPECT_EQ(key->Query(u"v", value), RegistryError::kNotFound);
  EXPECT_EQ(value.type, RegistryType::kDword);
  EXPECT_EQ(value.bytes, kSomeBytes);
  EXPECT_EQ(key->DeleteValue(u"v"), RegistryError::kNotFound);
}

TEST_P(RegistryContract, ADeletedValueIsGoneAndTheOthersStay) {
  ASSERT_EQ(Put(Store(), u"a", u"one", RegistryType::kBinary, kSomeBytes), RegistryError::kNone);
  ASSERT_EQ(Put(Store(), u"a", u"two", RegistryType::kBinary, kSomeBytes), RegistryError::kNone);
  const auto key = Store().OpenKey(u"a").key;
  ASSERT_EQ(key->DeleteValue(u"ONE"), RegistryError::kNone);
  EXPECT_THAT(ValueNames(*key), ElementsAre(u"two"));
}

TEST_P(RegistryContract, SubkeysAreEnumeratedInTheOrderInWhichTheyWereMade) {
  for (const auto* const name : {u"k\\m", u"k\\a", u"k\\Z", u"k\\b"}) {
    ASSERT_EQ(Store().CreateKey(name).error, RegistryError::kNone);
  }
  EXPECT_THAT(SubkeyNames(Store(), u"k"), ElementsAre(u"m", u"a", u"Z", u"b"));
}

TEST_P(RegistryContract, BehindTheLastItemThereAreNoMore) {
  const auto key = Store().CreateKey(u"a").key;
  std::u16string name = u"untouched";
  EXPECT_EQ(key->EnumerateSubkey(0, name), RegistryError::kNoMoreItems);
  EXPECT_EQ(key->EnumerateSubkey(0xFFFFFFFF, name), RegistryError::kNoMoreItems);
  EXPECT_EQ(key->EnumerateValue(0, name), RegistryError::kNoMoreItems);
  EXPECT_EQ(name, u"untouched");
}

TEST_P(RegistryContract, WhileSubkeysAreDeletedTheNextOneMovesIntoTheirIndex) {
  for (const auto* const name : {u"k\\a", u"k\\b", u"k\\c", u"k\\d"}) {
    ASSERT_EQ(Store().CreateKey(name).error, RegistryError::kNone);
  }
  const auto key = Store().OpenKey(u"k").key;
  std::u16string name;
  ASSERT_EQ(key->EnumerateSubkey(1, name), RegistryError::kNone);
  EXPECT_EQ(name, u"b");
  ASSERT_EQ(Store().DeleteKey(u"k\\b"), RegistryError::kNone);
  ASSERT_EQ(key->EnumerateSubkey(1, name), RegistryError::kNone);
  EXPECT_EQ(name, u"c");
  ASSERT_EQ(Store().DeleteKey(u"k\\c"), RegistryError::kNone);
  ASSERT_EQ(key->EnumerateSubkey(1, name), RegistryError::kNone);
  EXPECT_EQ(name, u"d");
  EXPECT_EQ(key->EnumerateSubkey(2, name), RegistryError::kNoMoreItems);
}

TEST_P(RegistryContract, TheNextIndexCountsFromTheFirstWhateverWentOrCameSinceTheLast) {
  for (const auto* const name : {u"k\\a", u"k\\b", u"k\\c", u"k\\d", u"k\\e"}) {
    ASSERT_EQ(Store().CreateKey(name).error, RegistryError::kNone);
  }
  const auto key = Store().OpenKey(u"k").key;
  std::u16string name;
  ASSERT_EQ(key->EnumerateSubkey(0, name), RegistryError::kNone);
  ASSERT_EQ(key->EnumerateSubkey(1, name), RegistryError::kNone);
  ASSERT_EQ(Store().DeleteKey(u"k\\a"), RegistryError::kNone);
  ASSERT_EQ(key->EnumerateSubkey(2, name), RegistryError::kNone);
  EXPECT_EQ(name, u"d") << "c moved to 1.";
  ASSERT_EQ(Store().CreateKey(u"k\\f").error, RegistryError::kNone);
  ASSERT_EQ(key->EnumerateSubkey(3, name), RegistryError::kNone);
  EXPECT_EQ(name, u"e");
  ASSERT_EQ(key->EnumerateSubkey(4, name), RegistryError::kNone);
  EXPECT_EQ(name, u"f");
  ASSERT_EQ(key->EnumerateSubkey(1, name), RegistryError::kNone);
  EXPECT_EQ(name, u"c");
  EXPECT_EQ(key->EnumerateSubkey(5, name), RegistryError::kNoMoreItems);
}

TEST_P(RegistryContract, TheNextIndexIsThatOfTheStateThatAnUndoneGroupLeft) {
  for (const auto* const name : {u"k\\a", u"k\\b", u"k\\c"}) {
    ASSERT_EQ(Store().CreateKey(name).error, RegistryError::kNone);
  }
  const auto key = Store().OpenKey(u"k").key;
  std::u16string name;
  {
    platform::RegistryGroup group(Store());
    ASSERT_EQ(Store().DeleteKey(u"k\\a"), RegistryError::kNone);
    ASSERT_EQ(key->EnumerateSubkey(0, name), RegistryError::kNone);
    EXPECT_EQ(name, u"b");
  }
  ASSERT_EQ(key->EnumerateSubkey(1, name), RegistryError::kNone);
  EXPECT_EQ(name, u"b");
  ASSERT_EQ(key->EnumerateSubkey(0, name), RegistryError::kNone);
  EXPECT_EQ(name, u"a");
}

TEST_P(RegistryContract, WhileValuesAreDeletedTheNextOneMovesIntoTheirIndex) {
  const auto key = Store().CreateKey(u"k").key;
  for (const auto* const name : {u"a", u"b", u"c", u"d"}) {
    ASSERT_EQ(key->Set(name, RegistryType::kBinary, {}), RegistryError::kNone);
  }
  std::u16string name;
  ASSERT_EQ(key->EnumerateValue(0, name), RegistryError::kNone);
  ASSERT_EQ(key->EnumerateValue(1, name), RegistryError::kNone);
  EXPECT_EQ(name, u"b");
  ASSERT_EQ(key->DeleteValue(u"a"), RegistryError::kNone);
  ASSERT_EQ(key->EnumerateValue(1, name), RegistryError::kNone);
  EXPECT_EQ(name, u"c");
  ASSERT_EQ(key->EnumerateValue(2, name), RegistryError::kNone);
  EXPECT_EQ(name, u"d");
}

TEST_P(RegistryContract, WritingAValueAgainLeavesItInItsPlace) {
  const auto key = Store().CreateKey(u"a").key;
  for (const auto* const name : {u"one", u"two", u"one"}) {
    ASSERT_EQ(key->Set(name, RegistryType::kBinary, kSomeBytes), RegistryError::kNone);
  }
  EXPECT_THAT(ValueNames(*key), ElementsAre(u"one", u"two"));
}

TEST_P(RegistryContract, DeletingAKeyTakesAllBelowItAndNothingBesideIt) {
  ASSERT_EQ(Put(Store(), u"a\\tags\\1", u"v", RegistryType::kBinary, kSomeBytes),
            RegistryError::kNone);
  ASSERT_EQ(Store().CreateKey(u"a\\tags\\2\\deep").error, RegistryError::kNone);
  ASSERT_EQ(Put(Store(), u"a\\tags2", u"v", RegistryType::kBinary, kSomeBytes),
            RegistryError::kNone);
  ASSERT_EQ(Store().DeleteKey(u"A\\TAGS"), RegistryError::kNone);
  EXPECT_FALSE(KeyExists(Store(), u"a\\tags"));
  EXPECT_FALSE(KeyExists(Store(), u"a\\tags\\2\\deep"));
  EXPECT_EQ(support::BytesOf(Store(), u"a\\tags2", u"v"), kSomeBytes);
  ASSERT_EQ(Store().CreateKey(u"a\\tags\\1").error, RegistryError::kNone);
  EXPECT_THAT(ValueNames(*Store().OpenKey(u"a\\tags\\1").key), IsEmpty());
}

TEST_P(RegistryContract, DeletingAMissingKeyIsNotFound) {
  EXPECT_EQ(Store().DeleteKey(u"a"), RegistryError::kNotFound);
}

TEST_P(RegistryContract, TheRootTakesValuesAndCannotBeDeleted) {
  ASSERT_EQ(Put(Store(), u"", u"v", RegistryType::kBinary, kSomeBytes), RegistryError::kNone);
  EXPECT_EQ(Store().DeleteKey(u""), RegistryError::kInvalid);
  EXPECT_EQ(support::BytesOf(Store(), u"", u"v"), kSomeBytes);
}

TEST_P(RegistryContract, AnOpenKeyIsDeadOnceItIsDeletedAlsoWhenItWasMadeAgain) {
  const auto key = Store().CreateKey(u"a\\b").key;
  ASSERT_EQ(Store().DeleteKey(u"a"), RegistryError::kNone);
  ASSERT_EQ(Put(Store(), u"a\\b", u"v", RegistryType::kBinary, kSomeBytes), RegistryError::kNone);
  std::u16string name;
  RegistryValue value;
  EXPECT_EQ(key->EnumerateSubkey(0, name), RegistryError::kNotFound);
  EXPECT_EQ(key->EnumerateValue(0, name), RegistryError::kNotFound);
  EXPECT_EQ(key->Query(u"v", value), RegistryError::kNotFound);
  EXPECT_EQ(key->Set(u"v", RegistryType::kNone, {}), RegistryError::kNotFound);
  EXPECT_EQ(key->DeleteValue(u"v"), RegistryError::kNotFound);
  EXPECT_EQ(support::BytesOf(Store(), u"a\\b", u"v"), kSomeBytes);
}

TEST_P(RegistryContract, PathsThatAreNoneAreRefused) {
  const std::u16string longest(platform::kMaxKeyNameLength, u'n');
  EXPECT_EQ(Store().CreateKey(longest).error, RegistryError::kNone);
  const std::vector<std::u16string> bad{
      u"\\a", u"b\\", u"c\\\\d", u"e\nf", u"g\u001Fh", longest + u"n", std::u16string(u"i\0j", 3)};
  for (const std::u16string& path : bad) {
    EXPECT_EQ(Store().OpenKey(path).error, RegistryError::kInvalid);
    EXPECT_EQ(Store().CreateKey(path).error, RegistryError::kInvalid);
    EXPECT_EQ(Store().DeleteKey(path), RegistryError::kInvalid);
  }
  EXPECT_THAT(SubkeyNames(Store(), u""), ElementsAre(longest));
}

TEST_P(RegistryContract, ValuesThatAreTooLongOrBadlyNamedAreRefused) {
  const auto key = Store().CreateKey(u"a").key;
  const std::u16string longest(platform::kMaxValueNameLength, u'n');
  EXPECT_EQ(key->Set(longest, RegistryType::kNone, {}), RegistryError::kNone);
  EXPECT_EQ(key->Set(longest + u"n", RegistryType::kNone, {}), RegistryError::kInvalid);
  EXPECT_EQ(key->Set(std::u16string_view(u"a\0b", 3), RegistryType::kNone, {}),
            RegistryError::kInvalid);
  const std::vector<std::byte> tooMany(platform::kMaxValueBytes + 1);
  EXPECT_EQ(key->Set(u"v", RegistryType::kNone, tooMany), RegistryError::kInvalid);
  EXPECT_EQ(ValueNames(*key).size(), 1U);
}

TEST_P(RegistryContract, KeysNestToTheirLimitAndAreDeletedFromThereUp) {
  std::u16string path = u"k";
  for (std::size_t depth = 1; depth < platform::kMaxKeyDepth; ++depth) {
    path += u"\\k";
  }
  ASSERT_EQ(Store().CreateKey(path).error, RegistryError::kNone);
  EXPECT_EQ(Store().CreateKey(path + u"\\k").error, RegistryError::kInvalid);
  ASSERT_EQ(Store().DeleteKey(u"k"), RegistryError::kNone);
  EXPECT_THAT(SubkeyNames(Store(), u""), IsEmpty());
}

TEST_P(RegistryContract, ManySubkeysAreAllEnumerated) {
  constexpr std::size_t kMany = 300;
  platform::RegistryGroup group(Store());
  for (std::size_t i = 0; i < kMany; ++i) {
    const std::string digits = std::to_string(i);
    const std::u16string name(digits.begin(), digits.end());
    ASSERT_EQ(Store().CreateKey(u"k\\" + name).error, RegistryError::kNone);
  }
  ASSERT_EQ(group.Commit(), RegistryError::kNone);
  const auto names = SubkeyNames(Store(), u"k");
  ASSERT_EQ(names.size(), kMany);
  EXPECT_EQ(names.front(), u"0");
  EXPECT_EQ(names.back(), u"299");
}

}  // namespace contract
