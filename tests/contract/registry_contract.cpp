#include "tests/contract/registry_contract.h"

#include <gmock/gmock.h>

#include <array>

#include "tests/support/registry_access.h"
#include "tests/support/results.h"

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
  ASSERT_EQ(support::ErrorOf(root), std::nullopt);
  EXPECT_THAT(SubkeyNames(**root), IsEmpty());
  EXPECT_THAT(ValueNames(**root), IsEmpty());
}

TEST_P(RegistryContract, ANewStoreIsGivenItsInitialKeysWithoutValues) {
  Make({u"Software\\Maker\\One", u"Software\\Maker\\Two"});
  EXPECT_THAT(SubkeyNames(Store(), u"Software\\Maker"), ElementsAre(u"One", u"Two"));
  EXPECT_THAT(ValueNames(*Store().OpenKey(u"Software\\Maker\\One").value()), IsEmpty());
}

TEST_P(RegistryContract, AMissingKeyIsNotFound) {
  const auto opened = Store().OpenKey(u"Software");
  EXPECT_EQ(support::ErrorOf(opened), RegistryError::kNotFound);
}

TEST_P(RegistryContract, CreatingAKeyMakesEveryKeyOnItsWay) {
  ASSERT_EQ(support::ErrorOf(Store().CreateKey(u"a\\b\\c")), std::nullopt);
  EXPECT_TRUE(KeyExists(Store(), u"a"));
  EXPECT_TRUE(KeyExists(Store(), u"a\\b"));
  EXPECT_TRUE(KeyExists(Store(), u"a\\b\\c"));
}

TEST_P(RegistryContract, CreatingAKeyThatExistsOpensIt) {
  ASSERT_EQ(support::ErrorOf(Put(Store(), u"a", u"v", RegistryType::kBinary, kSomeBytes)),
            std::nullopt);
  const auto again = Store().CreateKey(u"a");
  RegistryValue value;
  value = (*again)->Query(u"v").value();
  EXPECT_EQ(value.bytes, kSomeBytes);
}

TEST_P(RegistryContract, KeyNamesAreComparedWithoutCaseAndKeptAsFirstWritten) {
  ASSERT_EQ(support::ErrorOf(Store().CreateKey(u"Software\\Größe")), std::nullopt);
  ASSERT_EQ(support::ErrorOf(Store().CreateKey(u"SOFTWARE\\GRÖßE\\x")), std::nullopt);
  EXPECT_THAT(SubkeyNames(Store(), u""), ElementsAre(u"Software"));
  EXPECT_TRUE(KeyExists(Store(), u"software\\größe\\X"));
}

TEST_P(RegistryContract, ValueNamesAreComparedWithoutCaseAndKeptAsFirstWritten) {
  ASSERT_EQ(support::ErrorOf(Put(Store(), u"a", u"Phone Type", RegistryType::kString, {})),
            std::nullopt);
  ASSERT_EQ(support::ErrorOf(Put(Store(), u"a", u"PHONE TYPE", RegistryType::kBinary, kSomeBytes)),
            std::nullopt);
  const auto key = Store().OpenKey(u"a").value();
  EXPECT_THAT(ValueNames(*key), ElementsAre(u"Phone Type"));
  RegistryValue value;
  value = key->Query(u"phone type").value();
  EXPECT_EQ(value.type, RegistryType::kBinary);
  EXPECT_EQ(value.bytes, kSomeBytes);
}

TEST_P(RegistryContract, NamesThatAreNotWellFormedTextAreKeptUnitByUnit) {
  const std::u16string lone{u'x', char16_t{0xDC00}};
  const std::u16string otherLone{u'x', char16_t{0xD800}};
  ASSERT_EQ(support::ErrorOf(Put(Store(), lone, otherLone, RegistryType::kNone, {})), std::nullopt);
  EXPECT_FALSE(KeyExists(Store(), otherLone));
  EXPECT_THAT(SubkeyNames(Store(), u""), ElementsAre(lone));
  EXPECT_THAT(ValueNames(*Store().OpenKey(lone).value()), ElementsAre(otherLone));
}

TEST_P(RegistryContract, AValueKeepsItsExactBytesAndType) {
  const auto key = Store().CreateKey(u"a").value();
  for (const std::size_t length : {std::size_t{0}, std::size_t{1}, std::size_t{3}, std::size_t{100},
                                   platform::kMaxValueBytes}) {
    std::vector<std::byte> bytes(length);
    for (std::size_t i = 0; i < length; ++i) {
      bytes[i] = static_cast<std::byte>(i * 7);
    }
    const auto type = static_cast<RegistryType>(0xFFFFFFFF - length);
    ASSERT_EQ(support::ErrorOf(key->Set(u"v", type, bytes)), std::nullopt);
    RegistryValue value;
    value = key->Query(u"v").value();
    EXPECT_EQ(value.type, type);
    EXPECT_EQ(value.bytes, bytes) << length;
  }
}

TEST_P(RegistryContract, TheEmptyNameIsThatOfTheDefaultValue) {
  ASSERT_EQ(support::ErrorOf(Put(Store(), u"a", u"", RegistryType::kBinary, kSomeBytes)),
            std::nullopt);
  EXPECT_EQ(support::BytesOf(Store(), u"a", u""), kSomeBytes);
  EXPECT_THAT(ValueNames(*Store().OpenKey(u"a").value()), ElementsAre(u""));
}

TEST_P(RegistryContract, AMissingValueIsNotFoundAndLeavesTheOutputAlone) {
  const auto key = Store().CreateKey(u"a").value();
  RegistryValue value{RegistryType::kDword, kSomeBytes};
  EXPECT_EQ(support::ErrorOf(key->Query(u"v")), RegistryError::kNotFound);
  EXPECT_EQ(value.type, RegistryType::kDword);
  EXPECT_EQ(value.bytes, kSomeBytes);
  EXPECT_EQ(support::ErrorOf(key->DeleteValue(u"v")), RegistryError::kNotFound);
}

TEST_P(RegistryContract, ADeletedValueIsGoneAndTheOthersStay) {
  ASSERT_EQ(support::ErrorOf(Put(Store(), u"a", u"one", RegistryType::kBinary, kSomeBytes)),
            std::nullopt);
  ASSERT_EQ(support::ErrorOf(Put(Store(), u"a", u"two", RegistryType::kBinary, kSomeBytes)),
            std::nullopt);
  const auto key = Store().OpenKey(u"a").value();
  ASSERT_EQ(support::ErrorOf(key->DeleteValue(u"ONE")), std::nullopt);
  EXPECT_THAT(ValueNames(*key), ElementsAre(u"two"));
}

TEST_P(RegistryContract, SubkeysAreEnumeratedInTheOrderInWhichTheyWereMade) {
  for (const auto* const name : {u"k\\m", u"k\\a", u"k\\Z", u"k\\b"}) {
    ASSERT_EQ(support::ErrorOf(Store().CreateKey(name)), std::nullopt);
  }
  EXPECT_THAT(SubkeyNames(Store(), u"k"), ElementsAre(u"m", u"a", u"Z", u"b"));
}

TEST_P(RegistryContract, AfterTheLastItemThereAreNoMore) {
  const auto key = Store().CreateKey(u"a").value();
  std::u16string name = u"untouched";
  EXPECT_EQ(key->EnumerateSubkey(0).value(), std::nullopt);
  EXPECT_EQ(key->EnumerateSubkey(0xFFFFFFFF).value(), std::nullopt);
  EXPECT_EQ(key->EnumerateValue(0).value(), std::nullopt);
  EXPECT_EQ(name, u"untouched");
}

TEST_P(RegistryContract, WhileSubkeysAreDeletedTheNextOneMovesIntoTheirIndex) {
  for (const auto* const name : {u"k\\a", u"k\\b", u"k\\c", u"k\\d"}) {
    ASSERT_EQ(support::ErrorOf(Store().CreateKey(name)), std::nullopt);
  }
  const auto key = Store().OpenKey(u"k").value();
  std::u16string name;
  EXPECT_EQ(key->EnumerateSubkey(1).value(), u"b");
  ASSERT_EQ(support::ErrorOf(Store().DeleteKey(u"k\\b")), std::nullopt);
  EXPECT_EQ(key->EnumerateSubkey(1).value(), u"c");
  ASSERT_EQ(support::ErrorOf(Store().DeleteKey(u"k\\c")), std::nullopt);
  EXPECT_EQ(key->EnumerateSubkey(1).value(), u"d");
  EXPECT_EQ(key->EnumerateSubkey(2).value(), std::nullopt);
}

TEST_P(RegistryContract, TheNextIndexCountsFromTheFirstWhateverWentOrCameSinceTheLast) {
  for (const auto* const name : {u"k\\a", u"k\\b", u"k\\c", u"k\\d", u"k\\e"}) {
    ASSERT_EQ(support::ErrorOf(Store().CreateKey(name)), std::nullopt);
  }
  const auto key = Store().OpenKey(u"k").value();
  std::u16string name;
  ASSERT_EQ(support::ErrorOf(key->EnumerateSubkey(0)), std::nullopt);
  ASSERT_EQ(support::ErrorOf(key->EnumerateSubkey(1)), std::nullopt);
  ASSERT_EQ(support::ErrorOf(Store().DeleteKey(u"k\\a")), std::nullopt);
  EXPECT_EQ(key->EnumerateSubkey(2).value(), u"d") << "c moved to 1.";
  ASSERT_EQ(support::ErrorOf(Store().CreateKey(u"k\\f")), std::nullopt);
  EXPECT_EQ(key->EnumerateSubkey(3).value(), u"e");
  EXPECT_EQ(key->EnumerateSubkey(4).value(), u"f");
  EXPECT_EQ(key->EnumerateSubkey(1).value(), u"c");
  EXPECT_EQ(key->EnumerateSubkey(5).value(), std::nullopt);
}

TEST_P(RegistryContract, TheNextIndexIsThatOfTheStateThatAnUndoneGroupLeft) {
  for (const auto* const name : {u"k\\a", u"k\\b", u"k\\c"}) {
    ASSERT_EQ(support::ErrorOf(Store().CreateKey(name)), std::nullopt);
  }
  const auto key = Store().OpenKey(u"k").value();
  std::u16string name;
  {
    auto group = platform::RegistryGroup::Begin(Store());
    ASSERT_EQ(support::ErrorOf(Store().DeleteKey(u"k\\a")), std::nullopt);
    EXPECT_EQ(key->EnumerateSubkey(0).value(), u"b");
  }
  EXPECT_EQ(key->EnumerateSubkey(1).value(), u"b");
  EXPECT_EQ(key->EnumerateSubkey(0).value(), u"a");
}

TEST_P(RegistryContract, WhileValuesAreDeletedTheNextOneMovesIntoTheirIndex) {
  const auto key = Store().CreateKey(u"k").value();
  for (const auto* const name : {u"a", u"b", u"c", u"d"}) {
    ASSERT_EQ(support::ErrorOf(key->Set(name, RegistryType::kBinary, {})), std::nullopt);
  }
  std::u16string name;
  ASSERT_EQ(support::ErrorOf(key->EnumerateValue(0)), std::nullopt);
  EXPECT_EQ(key->EnumerateValue(1).value(), u"b");
  ASSERT_EQ(support::ErrorOf(key->DeleteValue(u"a")), std::nullopt);
  EXPECT_EQ(key->EnumerateValue(1).value(), u"c");
  EXPECT_EQ(key->EnumerateValue(2).value(), u"d");
}

TEST_P(RegistryContract, WritingAValueAgainLeavesItInItsPlace) {
  const auto key = Store().CreateKey(u"a").value();
  for (const auto* const name : {u"one", u"two", u"one"}) {
    ASSERT_EQ(support::ErrorOf(key->Set(name, RegistryType::kBinary, kSomeBytes)), std::nullopt);
  }
  EXPECT_THAT(ValueNames(*key), ElementsAre(u"one", u"two"));
}

TEST_P(RegistryContract, DeletingAKeyTakesAllBelowItAndNothingNextToIt) {
  ASSERT_EQ(support::ErrorOf(Put(Store(), u"a\\tags\\1", u"v", RegistryType::kBinary, kSomeBytes)),
            std::nullopt);
  ASSERT_EQ(support::ErrorOf(Store().CreateKey(u"a\\tags\\2\\deep")), std::nullopt);
  ASSERT_EQ(support::ErrorOf(Put(Store(), u"a\\tags2", u"v", RegistryType::kBinary, kSomeBytes)),
            std::nullopt);
  ASSERT_EQ(support::ErrorOf(Store().DeleteKey(u"A\\TAGS")), std::nullopt);
  EXPECT_FALSE(KeyExists(Store(), u"a\\tags"));
  EXPECT_FALSE(KeyExists(Store(), u"a\\tags\\2\\deep"));
  EXPECT_EQ(support::BytesOf(Store(), u"a\\tags2", u"v"), kSomeBytes);
  ASSERT_EQ(support::ErrorOf(Store().CreateKey(u"a\\tags\\1")), std::nullopt);
  EXPECT_THAT(ValueNames(*Store().OpenKey(u"a\\tags\\1").value()), IsEmpty());
}

TEST_P(RegistryContract, DeletingAMissingKeyIsNotFound) {
  EXPECT_EQ(support::ErrorOf(Store().DeleteKey(u"a")), RegistryError::kNotFound);
}

TEST_P(RegistryContract, TheRootTakesValuesAndCannotBeDeleted) {
  ASSERT_EQ(support::ErrorOf(Put(Store(), u"", u"v", RegistryType::kBinary, kSomeBytes)),
            std::nullopt);
  EXPECT_EQ(support::ErrorOf(Store().DeleteKey(u"")), RegistryError::kInvalid);
  EXPECT_EQ(support::BytesOf(Store(), u"", u"v"), kSomeBytes);
}

TEST_P(RegistryContract, AnOpenKeyIsDeadOnceItIsDeletedAlsoWhenItWasMadeAgain) {
  const auto key = Store().CreateKey(u"a\\b").value();
  ASSERT_EQ(support::ErrorOf(Store().DeleteKey(u"a")), std::nullopt);
  ASSERT_EQ(support::ErrorOf(Put(Store(), u"a\\b", u"v", RegistryType::kBinary, kSomeBytes)),
            std::nullopt);
  std::u16string name;
  RegistryValue value;
  EXPECT_EQ(support::ErrorOf(key->EnumerateSubkey(0)), RegistryError::kNotFound);
  EXPECT_EQ(support::ErrorOf(key->EnumerateValue(0)), RegistryError::kNotFound);
  EXPECT_EQ(support::ErrorOf(key->Query(u"v")), RegistryError::kNotFound);
  EXPECT_EQ(support::ErrorOf(key->Set(u"v", RegistryType::kNone, {})), RegistryError::kNotFound);
  EXPECT_EQ(support::ErrorOf(key->DeleteValue(u"v")), RegistryError::kNotFound);
  EXPECT_EQ(support::BytesOf(Store(), u"a\\b", u"v"), kSomeBytes);
}

TEST_P(RegistryContract, PathsThatAreNoneAreRefused) {
  const std::u16string longest(platform::kMaxKeyNameLength, u'n');
  EXPECT_EQ(support::ErrorOf(Store().CreateKey(longest)), std::nullopt);
  const std::vector<std::u16string> bad{
      u"\\a", u"b\\", u"c\\\\d", u"e\nf", u"g\u001Fh", longest + u"n", std::u16string(u"i\0j", 3)};
  for (const std::u16string& path : bad) {
    EXPECT_EQ(support::ErrorOf(Store().OpenKey(path)), RegistryError::kInvalid);
    EXPECT_EQ(support::ErrorOf(Store().CreateKey(path)), RegistryError::kInvalid);
    EXPECT_EQ(support::ErrorOf(Store().DeleteKey(path)), RegistryError::kInvalid);
  }
  EXPECT_THAT(SubkeyNames(Store(), u""), ElementsAre(longest));
}

TEST_P(RegistryContract, ValuesThatAreTooLongOrBadlyNamedAreRefused) {
  const auto key = Store().CreateKey(u"a").value();
  const std::u16string longest(platform::kMaxValueNameLength, u'n');
  EXPECT_EQ(support::ErrorOf(key->Set(longest, RegistryType::kNone, {})), std::nullopt);
  EXPECT_EQ(support::ErrorOf(key->Set(longest + u"n", RegistryType::kNone, {})),
            RegistryError::kInvalid);
  EXPECT_EQ(support::ErrorOf(key->Set(std::u16string_view(u"a\0b", 3), RegistryType::kNone, {})),
            RegistryError::kInvalid);
  const std::vector<std::byte> tooMany(platform::kMaxValueBytes + 1);
  EXPECT_EQ(support::ErrorOf(key->Set(u"v", RegistryType::kNone, tooMany)),
            RegistryError::kInvalid);
  EXPECT_EQ(ValueNames(*key).size(), 1U);
}

TEST_P(RegistryContract, KeysNestToTheirLimitAndAreDeletedFromThereUp) {
  std::u16string path = u"k";
  for (std::size_t depth = 1; depth < platform::kMaxKeyDepth; ++depth) {
    path += u"\\k";
  }
  ASSERT_EQ(support::ErrorOf(Store().CreateKey(path)), std::nullopt);
  EXPECT_EQ(support::ErrorOf(Store().CreateKey(path + u"\\k")), RegistryError::kInvalid);
  ASSERT_EQ(support::ErrorOf(Store().DeleteKey(u"k")), std::nullopt);
  EXPECT_THAT(SubkeyNames(Store(), u""), IsEmpty());
}

TEST_P(RegistryContract, ManySubkeysAreAllEnumerated) {
  constexpr std::size_t kMany = 300;
  auto group = platform::RegistryGroup::Begin(Store());
  for (std::size_t i = 0; i < kMany; ++i) {
    const std::string digits = std::to_string(i);
    const std::u16string name(digits.begin(), digits.end());
    ASSERT_EQ(support::ErrorOf(Store().CreateKey(u"k\\" + name)), std::nullopt);
  }
  ASSERT_EQ(support::ErrorOf(group->Commit()), std::nullopt);
  const auto names = SubkeyNames(Store(), u"k");
  ASSERT_EQ(names.size(), kMany);
  EXPECT_EQ(names.front(), u"0");
  EXPECT_EQ(names.back(), u"299");
}

}  // namespace contract
