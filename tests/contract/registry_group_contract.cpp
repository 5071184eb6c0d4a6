#include <gmock/gmock.h>

#include <thread>

#include "tests/contract/registry_contract.h"
#include "tests/support/registry_access.h"
#include "tests/support/results.h"

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
  auto group = platform::RegistryGroup::Begin(Store());
  ASSERT_EQ(support::ErrorOf(group), std::nullopt);
  ASSERT_EQ(support::ErrorOf(Put(Store(), u"a", u"v", RegistryType::kBinary, kNew)), std::nullopt);
  ASSERT_EQ(support::ErrorOf(Store().CreateKey(u"b")), std::nullopt);
  ASSERT_EQ(support::ErrorOf(group->Commit()), std::nullopt);
  EXPECT_EQ(BytesOf(Store(), u"a", u"v"), kNew);
  EXPECT_TRUE(KeyExists(Store(), u"b"));
}

TEST_P(RegistryContract, WithinAGroupItsOwnChangesAreRead) {
  ASSERT_EQ(support::ErrorOf(Put(Store(), u"a", u"v", RegistryType::kBinary, kOld)), std::nullopt);
  auto group = platform::RegistryGroup::Begin(Store());
  ASSERT_EQ(support::ErrorOf(Put(Store(), u"a", u"v", RegistryType::kBinary, kNew)), std::nullopt);
  ASSERT_EQ(support::ErrorOf(Store().CreateKey(u"a\\b")), std::nullopt);
  EXPECT_EQ(BytesOf(Store(), u"a", u"v"), kNew);
  EXPECT_THAT(SubkeyNames(Store(), u"a"), ElementsAre(u"b"));
}

TEST_P(RegistryContract, AGroupThatIsNotCommittedIsUndone) {
  ASSERT_EQ(support::ErrorOf(Put(Store(), u"a", u"v", RegistryType::kBinary, kOld)), std::nullopt);
  ASSERT_EQ(support::ErrorOf(Put(Store(), u"b\\c", u"w", RegistryType::kBinary, kOld)),
            std::nullopt);
  const auto opened = Store().OpenKey(u"b\\c").value();
  {
    auto group = platform::RegistryGroup::Begin(Store());
    ASSERT_EQ(support::ErrorOf(Put(Store(), u"a", u"v", RegistryType::kString, kNew)),
              std::nullopt);
    ASSERT_EQ(support::ErrorOf(Store().CreateKey(u"d")), std::nullopt);
    ASSERT_EQ(support::ErrorOf(Store().DeleteKey(u"b")), std::nullopt);
    RegistryValue value;
    EXPECT_EQ(support::ErrorOf(opened->Query(u"w")), RegistryError::kNotFound);
  }
  EXPECT_EQ(BytesOf(Store(), u"a", u"v"), kOld);
  EXPECT_FALSE(KeyExists(Store(), u"d"));
  const auto value = opened->Query(u"w");
  ASSERT_TRUE(value) << "the key is there again";
  EXPECT_EQ(value->bytes, kOld);
}

TEST_P(RegistryContract, AKeyMadeInAnUndoneGroupIsDeadAlsoWhenAnotherOneIsMade) {
  platform::OpenedKey never;
  {
    auto group = platform::RegistryGroup::Begin(Store());
    never = Store().CreateKey(u"never");
    ASSERT_EQ(support::ErrorOf(never), std::nullopt);
  }
  ASSERT_EQ(support::ErrorOf(Put(Store(), u"other", u"v", RegistryType::kBinary, kOld)),
            std::nullopt);
  RegistryValue value;
  EXPECT_EQ(support::ErrorOf((*never)->Query(u"v")), RegistryError::kNotFound);
  EXPECT_EQ(support::ErrorOf((*never)->Set(u"v", RegistryType::kBinary, kNew)),
            RegistryError::kNotFound);
  EXPECT_EQ(BytesOf(Store(), u"other", u"v"), kOld);
}

TEST_P(RegistryContract, AKeyOpenedInACommittedGroupStaysOpen) {
  auto group = platform::RegistryGroup::Begin(Store());
  const auto created = Store().CreateKey(u"a");
  ASSERT_EQ(support::ErrorOf(group->Commit()), std::nullopt);
  EXPECT_EQ(support::ErrorOf((*created)->Set(u"v", RegistryType::kBinary, kNew)), std::nullopt);
}

TEST_P(RegistryContract, GroupsDoNotNestAndTheOuterOneGoesOn) {
  auto group = platform::RegistryGroup::Begin(Store());
  EXPECT_EQ(support::ErrorOf(Store().BeginGroup()), RegistryError::kInvalid);
  ASSERT_EQ(support::ErrorOf(Store().CreateKey(u"a")), std::nullopt);
  ASSERT_EQ(support::ErrorOf(group->Commit()), std::nullopt);
  EXPECT_TRUE(KeyExists(Store(), u"a"));
}

TEST_P(RegistryContract, AGroupForReadingReadsWhatIsThereAndEndsAsOthersDo) {
  ASSERT_EQ(support::ErrorOf(Put(Store(), u"a", u"v", RegistryType::kBinary, kOld)), std::nullopt);
  {
    auto group = platform::RegistryGroup::BeginReading(Store());
    ASSERT_EQ(support::ErrorOf(group), std::nullopt);
    EXPECT_EQ(support::ErrorOf(Store().BeginReading()), RegistryError::kInvalid);
    EXPECT_EQ(BytesOf(Store(), u"a", u"v"), kOld);
    EXPECT_EQ(support::ErrorOf(group->Commit()), std::nullopt);
  }
  {
    const auto group = platform::RegistryGroup::BeginReading(Store());
    EXPECT_EQ(BytesOf(Store(), u"a", u"v"), kOld);
  }
  EXPECT_EQ(support::ErrorOf(Put(Store(), u"a", u"v", RegistryType::kBinary, kNew)), std::nullopt);
  EXPECT_EQ(BytesOf(Store(), u"a", u"v"), kNew);
}

TEST_P(RegistryContract, WithoutAGroupThereIsNothingToCommitOrCancel) {
  EXPECT_EQ(support::ErrorOf(Store().CommitGroup()), RegistryError::kInvalid);
  Store().CancelGroup();
  EXPECT_EQ(support::ErrorOf(Store().BeginGroup()), std::nullopt);
  Store().CancelGroup();
}

TEST_P(RegistryContract, WhatIsMissingOrInvalidDoesNotDoomAGroup) {
  auto group = platform::RegistryGroup::Begin(Store());
  const auto key = Store().CreateKey(u"a").value();
  std::u16string name;
  EXPECT_EQ(support::ErrorOf(Store().DeleteKey(u"missing")), RegistryError::kNotFound);
  EXPECT_EQ(support::ErrorOf(key->DeleteValue(u"missing")), RegistryError::kNotFound);
  EXPECT_EQ(key->EnumerateSubkey(0).value(), std::nullopt);
  EXPECT_EQ(support::ErrorOf(Store().CreateKey(u"\\")), RegistryError::kInvalid);
  ASSERT_EQ(support::ErrorOf(group->Commit()), std::nullopt);
  EXPECT_TRUE(KeyExists(Store(), u"a"));
}

TEST_P(RegistryContract, WhileOneThreadHasAGroupOpenAnotherIsBusy) {
  Make({}, std::chrono::milliseconds(1));
  auto group = platform::RegistryGroup::Begin(Store());
  ASSERT_EQ(support::ErrorOf(Store().CreateKey(u"a")), std::nullopt);
  std::optional<RegistryError> opening;
  std::optional<RegistryError> beginning;
  std::optional<RegistryError> committing;
  std::thread other([&] {
    opening = support::ErrorOf(Store().OpenKey(u"a"));
    beginning = support::ErrorOf(Store().BeginGroup());
    committing = support::ErrorOf(Store().CommitGroup());
    Store().CancelGroup();
  });
  other.join();
  EXPECT_EQ(opening, RegistryError::kBusy);
  EXPECT_EQ(beginning, RegistryError::kBusy);
  EXPECT_EQ(committing, RegistryError::kBusy);
  ASSERT_EQ(support::ErrorOf(group->Commit()), std::nullopt);
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
      auto group = platform::RegistryGroup::Begin(Store());
      bool ok = group.has_value();
      ok = ok && PutText(Store(), path, u"one", text);
      ok = ok && PutText(Store(), path, u"two", text);
      ok = ok && group->Commit();
      ok = ok && PutText(Store(), u"shared", path.substr(2), text);
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
