#include <gmock/gmock.h>

#include <thread>

#include "tests/contract/registry_contract.h"
#include "tests/support/registry_access.h"

namespace contract {

using platform::RegistryError;
using platform::RegistryGroup;
using platform::RegistryType;
using platform::RegistryValue;
using support::BytesOf;
using support::KeyExists;
using support::Put;
using support::PutText;
using support::SubkeyNames;
using support::Utf16Bytes;
using testing::ElementsAre;

namespace {

const std::vector<std::byte> kOld{std::byte{1}};
const std::vector<std::byte> kNew{std::byte{2}, std::byte{3}};

}  // namespace

TEST_P(RegistryContract, ACommittedGroupIsKeptWhole) {
  RegistryGroup group(Store());
  ASSERT_EQ(group.BeginError(), RegistryError::kNone);
  ASSERT_EQ(Put(Store(), u"a", u"v", RegistryType::kBinary, kNew), RegistryError::kNone);
  ASSERT_EQ(Store().CreateKey(u"b").error, RegistryError::kNone);
  ASSERT_EQ(group.Commit(), RegistryError::kNone);
  EXPECT_EQ(BytesOf(Store(), u"a", u"v"), kNew);
  EXPECT_TRUE(KeyExists(Store(), u"b"));
}

TEST_P(RegistryContract, WithinAGroupItsOwnChangesAreRead) {
  ASSERT_EQ(Put(Store(), u"a", u"v", RegistryType::kBinary, kOld), RegistryError::kNone);
  RegistryGroup group(Store());
  ASSERT_EQ(Put(Store(), u"a", u"v", RegistryType::kBinary, kNew), RegistryError::kNone);
  ASSERT_EQ(Store().CreateKey(u"a\\b").error, RegistryError::kNone);
  EXPECT_EQ(BytesOf(Store(), u"a", u"v"), kNew);
  EXPECT_THAT(SubkeyNames(Store(), u"a"), ElementsAre(u"b"));
}

TEST_P(RegistryContract, AGroupThatIsNotCommittedIsUndone) {
  ASSERT_EQ(Put(Store(), u"a", u"v", RegistryType::kBinary, kOld), RegistryError::kNone);
  ASSERT_EQ(Put(Store(), u"b\\c", u"w", RegistryType::kBinary, kOld), RegistryError::kNone);
  const auto opened = Store().OpenKey(u"b\\c").key;
  {
    RegistryGroup group(Store());
    ASSERT_EQ(Put(Store(), u"a", u"v", RegistryType::kString, kNew), RegistryError::kNone);
    ASSERT_EQ(Store().CreateKey(u"d").error, RegistryError::kNone);
    ASSERT_EQ(Store().DeleteKey(u"b"), RegistryError::kNone);
    RegistryValue value;
    EXPECT_EQ(opened->Query(u"w", value), RegistryError::kNotFound);
  }
  EXPECT_EQ(BytesOf(Store(), u"a", u"v"), kOld);
  EXPECT_FALSE(KeyExists(Store(), u"d"));
  RegistryValue value;
  EXPECT_EQ(opened->Query(u"w", value), RegistryError::kNone)
      << "the key was not deleted after all";
  EXPECT_EQ(value.bytes, kOld);
}

TEST_P(RegistryContract, AKeyMadeInAnUndoneGroupIsDeadAlsoWhenAnotherOneIsMade) {
  platform::OpenedKey never;
  {
    RegistryGroup group(Store());
    never = Store().CreateKey(u"never");
    ASSERT_EQ(never.error, RegistryError::kNone);
  }
  ASSERT_EQ(Put(Store(), u"other", u"v", RegistryType::kBinary, kOld), RegistryError::kNone);
  RegistryValue value;
  EXPECT_EQ(never.key->Query(u"v", value), RegistryError::kNotFound);
  EXPECT_EQ(never.key->Set(u"v", RegistryType::kBinary, kNew), RegistryError::kNotFound);
  EXPECT_EQ(BytesOf(Store(), u"other", u"v"), kOld);
}

TEST_P(RegistryContract, AKeyOpenedInACommittedGroupStaysOpen) {
  RegistryGroup group(Store());
  const auto created = Store().CreateKey(u"a");
  ASSERT_EQ(group.Commit(), RegistryError::kNone);
  EXPECT_EQ(created.key->Set(u"v", RegistryType::kBinary, kNew), RegistryError::kNone);
}

TEST_P(RegistryContract, GroupsDoNotNestAndTheOuterOneGoesOn) {
  RegistryGroup group(Store());
  EXPECT_EQ(Store().BeginGroup(), RegistryError::kInvalid);
  ASSERT_EQ(Store().CreateKey(u"a").error, RegistryError::kNone);
  ASSERT_EQ(group.Commit(), RegistryError::kNone);
  EXPECT_TRUE(KeyExists(Store(), u"a"));
}

TEST_P(RegistryContract, WithoutAGroupThereIsNothingToCommitOrCancel) {
  EXPECT_EQ(Store().CommitGroup(), RegistryError::kInvalid);
  Store().CancelGroup();
  EXPECT_EQ(Store().BeginGroup(), RegistryError::kNone);
  Store().CancelGroup();
}

TEST_P(RegistryContract, WhatIsMissingOrInvalidDoesNotDoomAGroup) {
  RegistryGroup group(Store());
  const auto key = Store().CreateKey(u"a").key;
  std::u16string name;
  EXPECT_EQ(Store().DeleteKey(u"missing"), RegistryError::kNotFound);
  EXPECT_EQ(key->DeleteValue(u"missing"), RegistryError::kNotFound);
  EXPECT_EQ(key->EnumerateSubkey(0, name), RegistryError::kNoMoreItems);
  EXPECT_EQ(Store().CreateKey(u"\\").error, RegistryError::kInvalid);
  ASSERT_EQ(group.Commit(), RegistryError::kNone);
  EXPECT_TRUE(KeyExists(Store(), u"a"));
}

TEST_P(RegistryContract, WhileOneThreadHasAGroupOpenAnotherIsBusy) {
  Make({}, std::chrono::milliseconds(1));
  RegistryGroup group(Store());
  ASSERT_EQ(Store().CreateKey(u"a").error, RegistryError::kNone);
  RegistryError opening = RegistryError::kNone;
  RegistryError beginning = RegistryError::kNone;
  RegistryError committing = RegistryError::kNone;
  std::thread other([&] {
    opening = Store().OpenKey(u"a").error;
    beginning = Store().BeginGroup();
    committing = Store().CommitGroup();
    Store().CancelGroup();
  });
  other.join();
  EXPECT_EQ(opening, RegistryError::kBusy);
  EXPECT_EQ(beginning, RegistryError::kBusy);
  EXPECT_EQ(committing, RegistryError::kBusy);
  ASSERT_EQ(group.Commit(), RegistryError::kNone);
  EXPECT_TRUE(KeyExists(Store(), u"a"));
}

TEST_P(RegistryContract, ManyThreadsWriteAndReadAtTheSameTime) {
  constexpr int kThreads = 4;
  constexpr int kGroups = 15;
  std::array<int, kThreads> failures{};
  const auto work = [&](int number) {
    const std::u16string path = u"k\\" + std::u16string(1, static_cast<char16_t>(u'a' + number));
    for (int i = 0; i < kGroups; ++i) {
      const std::u16string text(static_cast<std::size_t>(i), u'x');
      RegistryGroup group(Store());
      bool ok = group.BeginError() == RegistryError::kNone;
      ok = ok && PutText(Store(), path, u"one", text) == RegistryError::kNone;
      ok = ok && PutText(Store(), path, u"two", text) == RegistryError::kNone;
      ok = ok && group.Commit() == RegistryError::kNone;
      ok = ok && PutText(Store(), u"shared", path.substr(2), text) == RegistryError::kNone;
      ok = ok && BytesOf(Store(), path, u"two") == Utf16Bytes(text + u'\0');
      if (!ok) {
        ++failures[static_cast<std::size_t>(number)];
      }
    }
  };
  {
    std::vector<std::jthread> threads;
    for (int i = 0; i < kThreads; ++i) {
      threads.emplace_back(work, i);
    }
  }
  EXPECT_THAT(failures, testing::Each(0));
  EXPECT_EQ(SubkeyNames(Store(), u"k").size(), static_cast<std::size_t>(kThreads));
}

}  // namespace contract
