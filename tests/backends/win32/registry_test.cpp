#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "backends/win32/registry_order.h"
#include "backends/win32/win32_registry.h"
#include "tests/support/registry_access.h"
#include "tests/support/results.h"

namespace {

using platform::RegistryError;
using platform::RegistryType;
using support::SubkeyNames;
using testing::ElementsAre;
using testing::IsEmpty;

/// A registry below a key of the test's own, which another program reaches by the system's calls.
class Win32RegistryTest : public testing::Test {
 protected:
  ~Win32RegistryTest() override { static_cast<void>(win32::RemoveTree(HKEY_CURRENT_USER, m_base)); }

  [[nodiscard]] win32::RegistryPlace Place() const {
    return {HKEY_CURRENT_USER, m_base + u"\\Registry", m_base + u"\\Order"};
  }

  /// Opens the key as another program does.
  [[nodiscard]] win32::SystemKey OpenOutside(const std::u16string& path) const {
    auto key = win32::OpenSystemKey(HKEY_CURRENT_USER, m_base + u"\\Registry\\" + path,
                                    KEY_READ | KEY_WRITE);
    return key ? std::move(*key) : win32::SystemKey();
  }

 private:
  const std::u16string m_base =
      u"Software\\Voxtrel Test " + std::u16string(1, static_cast<char16_t>(u'a' + Number()));

  static int Number() {
    static int number = 0;
    return number++ % 26;
  }
};

TEST_F(Win32RegistryTest, TheOrderOutlivesTheProgramAndATagThatIsWrittenAgainKeepsItsPlace) {
  const win32::RegistryOptions options{{}, {u"tags"}};
  {
    win32::Win32Registry registry(Place(), options);
    for (const auto* const name : {u"tags\\900", u"tags\\50", u"tags\\4294967295", u"tags\\3"}) {
      ASSERT_TRUE(registry.CreateKey(name));
    }
  }
  win32::Win32Registry registry(Place(), options);
  ASSERT_TRUE(support::PutText(registry, u"tags\\900", u"contact", u"1"));
  ASSERT_TRUE(registry.DeleteKey(u"tags\\50"));
  ASSERT_TRUE(registry.CreateKey(u"tags\\50"));
  EXPECT_THAT(SubkeyNames(registry, u"tags"), ElementsAre(u"900", u"4294967295", u"3", u"50"));
}

TEST_F(Win32RegistryTest, KeysOfAnotherProgramAreNotedBeforeTheNextOneThatIsMade) {
  win32::Win32Registry registry(Place(), {{}, {u"tags"}});
  ASSERT_TRUE(registry.CreateKey(u"tags\\7"));
  const win32::SystemKey tags = OpenOutside(u"tags");
  for (const auto* const name : {u"90", u"1000"}) {
    ASSERT_TRUE(win32::MakeSystemKey(tags.Get(), name));
  }
  ASSERT_TRUE(registry.CreateKey(u"tags\\8"));
  EXPECT_THAT(SubkeyNames(registry, u"tags"), ElementsAre(u"7", u"90", u"1000", u"8"));
}

TEST_F(Win32RegistryTest, AKeyOfAnotherProgramKeepsItsPlaceWhenItIsWrittenAgain) {
  win32::Win32Registry registry(Place(), {{}, {u"tags"}});
  ASSERT_TRUE(registry.CreateKey(u"tags"));
  const win32::SystemKey tags = OpenOutside(u"tags");
  for (const auto* const name : {u"1", u"2", u"3"}) {
    ASSERT_TRUE(win32::MakeSystemKey(tags.Get(), name));
  }
  ASSERT_TRUE(support::PutText(registry, u"tags\\1", u"contact", u"5"));
  EXPECT_THAT(SubkeyNames(registry, u"tags"), ElementsAre(u"1", u"2", u"3"));
}

/// Returns the names in the order in which the keys count as made. All of them were changed at the
/// same moment, and none is noted.
std::vector<std::u16string> InOrderAtOneMoment(const std::vector<std::u16string>& names) {
  std::vector<win32::ListedKey> keys;
  for (const std::u16string& name : names) {
    keys.push_back({name, 5});
  }
  std::vector<std::u16string> ordered;
  for (const win32::ListedKey& key : win32::InOrderOfMaking(std::move(keys), {})) {
    ordered.push_back(*key.name);
  }
  return ordered;
}

TEST(RegistryOrder, IsThatOfNumbersForKeysOfOneMoment) {
  EXPECT_THAT(InOrderAtOneMoment({u"1000", u"20", u"9"}), ElementsAre(u"9", u"20", u"1000"));
}

TEST(RegistryOrder, GoesOnWhereTickCountsBeginAgain) {
  EXPECT_THAT(InOrderAtOneMoment({u"-2", u"-30", u"5", u"700"}),
              ElementsAre(u"-30", u"-2", u"5", u"700"));
  EXPECT_THAT(InOrderAtOneMoment({u"-2147483640", u"2147483640"}),
              ElementsAre(u"2147483640", u"-2147483640"));
  EXPECT_THAT(InOrderAtOneMoment({u"3", u"4294967290"}), ElementsAre(u"4294967290", u"3"));
}

TEST(RegistryOrder, HasNamesThatAreNoNumbersLast) {
  EXPECT_THAT(InOrderAtOneMoment({u"anna", u"99999999999", u"7", u"б"}),
              ElementsAre(u"7", u"anna", u"99999999999", u"б"));
  EXPECT_THAT(InOrderAtOneMoment({u"anna"}), ElementsAre(u"anna"));
}

TEST(RegistryOrder, IsThatOfTimeBeforeThatOfNumbersAndWhatIsNotedComesFirst) {
  std::vector<std::u16string> ordered;
  for (const win32::ListedKey& key : win32::InOrderOfMaking(
           {{u"1", 9}, {u"2", 8}, {u"3", 9}, {u"Б", 7}, {u"5", 1}}, {u"gone", u"б", u"3"})) {
    ordered.push_back(*key.name);
  }
  EXPECT_THAT(ordered, ElementsAre(u"Б", u"3", u"5", u"2", u"1"));
}

TEST_F(Win32RegistryTest, AKeyThatAnotherProgramDeletedHasNoPlaceInTheOrder) {
  win32::Win32Registry registry(Place(), {{}, {u"tags"}});
  for (const auto* const name : {u"tags\\2", u"tags\\1"}) {
    ASSERT_TRUE(registry.CreateKey(name));
  }
  const auto open = registry.OpenKey(u"tags\\2");
  ASSERT_TRUE(win32::RemoveTree(OpenOutside(u"tags").Get(), u"2"));
  EXPECT_THAT(SubkeyNames(registry, u"tags"), ElementsAre(u"1"));
  EXPECT_EQ(support::ErrorOf((*open)->Query(u"contact")), RegistryError::kNotFound);
  ASSERT_TRUE(registry.CreateKey(u"tags\\2"));
  EXPECT_THAT(SubkeyNames(registry, u"tags"), ElementsAre(u"1", u"2"));
}

TEST_F(Win32RegistryTest, NothingOfOtherProgramsIsShownOrDeleted) {
  win32::RegistryOptions options;
  options.ownKeys = {u"Software\\Maker", u"Drivers\\Active"};
  win32::Win32Registry registry(Place(), options);
  ASSERT_TRUE(registry.CreateKey(u"Software\\Maker\\Tags"));
  ASSERT_TRUE(win32::MakeSystemKey(OpenOutside(u"Software").Get(), u"Another"));
  EXPECT_THAT(SubkeyNames(registry, u""), ElementsAre(u"Software"));
  EXPECT_THAT(SubkeyNames(registry, u"Software"), ElementsAre(u"Maker"));
  EXPECT_EQ(support::ErrorOf(registry.OpenKey(u"Software\\Another")), RegistryError::kNotFound);
  EXPECT_EQ(support::ErrorOf(registry.CreateKey(u"Software\\Third")), RegistryError::kReadOnly);
  EXPECT_EQ(support::ErrorOf(registry.DeleteKey(u"Software")), RegistryError::kReadOnly);
  EXPECT_EQ(support::ErrorOf(registry.DeleteKey(u"Software\\Another")), RegistryError::kReadOnly);
  EXPECT_EQ(support::ErrorOf(support::Put(registry, u"Software", u"v", RegistryType::kNone, {})),
            RegistryError::kReadOnly);
  EXPECT_TRUE(OpenOutside(u"Software\\Another").IsOpen());
  EXPECT_TRUE(registry.DeleteKey(u"Software\\Maker"));
}

TEST_F(Win32RegistryTest, AReaderMakesNothingAndFindsNothing) {
  win32::RegistryOptions options;
  options.isReadOnly = true;
  win32::Win32Registry registry(Place(), options);
  const auto root = registry.OpenKey(u"");
  ASSERT_TRUE(root) << "The root is always there.";
  EXPECT_THAT(SubkeyNames(**root), IsEmpty());
  EXPECT_EQ(support::ErrorOf((*root)->Query(u"v")), RegistryError::kNotFound);
  EXPECT_EQ(support::ErrorOf(registry.CreateKey(u"a")), RegistryError::kReadOnly);
  EXPECT_FALSE(OpenOutside(u"").IsOpen());
}

TEST_F(Win32RegistryTest, ATextWithoutAZeroIsNotEndedByTheSystem) {
  win32::Win32Registry registry(Place());
  for (const std::size_t length : {1U, 2U, 3U, 8U}) {
    const std::vector<std::byte> bytes(length, std::byte{'x'});
    ASSERT_TRUE(support::Put(registry, u"a", u"v", RegistryType::kString, bytes));
    EXPECT_EQ(support::BytesOf(registry, u"a", u"v"), bytes) << length;
  }
}

TEST_F(Win32RegistryTest, ANewRegistryIsGivenItsKeysOnce) {
  const win32::RegistryOptions options{{u"a\\b"}, {}};
  {
    win32::Win32Registry registry(Place(), options);
    ASSERT_TRUE(support::KeyExists(registry, u"a\\b"));
    ASSERT_TRUE(registry.DeleteKey(u"a\\b"));
  }
  win32::Win32Registry registry(Place(), options);
  EXPECT_FALSE(support::KeyExists(registry, u"a\\b"));
}

/// What a process leaves that ends after so many changes of a group, made by threads of which none
/// gives the lock of writers back.
class KilledWriter : public Win32RegistryTest {
 protected:
  using Change = std::function<bool(platform::Registry&)>;

  void KillAfter(std::size_t count, const std::vector<Change>& changes) {
    std::thread([&] {
      auto registry = std::make_unique<win32::Win32Registry>(Place(), Options(u"killed-1"));
      ASSERT_TRUE(registry->BeginGroup());
      for (std::size_t i = 0; i < count; ++i) {
        ASSERT_TRUE(changes[i](*registry)) << i;
      }
    }).join();
  }

  [[nodiscard]] static win32::RegistryOptions Options(std::u16string writer) {
    win32::RegistryOptions options{{}, {u"tags"}};
    options.writer = std::move(writer);
    return options;
  }

  [[nodiscard]] win32::KeyTree Everything() const {
    return win32::ReadTree(OpenOutside(u"").Get()).value_or(win32::KeyTree());
  }
};

TEST_F(KilledWriter, EveryPartOfAGroupIsUndoneBeforeTheNextChange) {
  win32::Win32Registry registry(Place(), Options(u"next-1"));
  ASSERT_TRUE(support::PutText(registry, u"tags\\1", u"contact", u"one"));
  ASSERT_TRUE(support::PutText(registry, u"tags\\1\\below", u"x", u"deep"));
  ASSERT_TRUE(support::PutText(registry, u"tags\\2", u"contact", u"two"));
  ASSERT_TRUE(support::PutText(registry, u"setting", u"kept", u"old"));
  const std::vector<Change> changes{
      [](auto& store) { return support::PutText(store, u"tags\\3", u"contact", u"3").has_value(); },
      [](auto& store) { return support::PutText(store, u"tags\\3", u"kind", u"x").has_value(); },
      [](auto& store) { return store.DeleteKey(u"tags\\1").has_value(); },
      [](auto& store) { return support::PutText(store, u"tags\\1", u"contact", u"n").has_value(); },
      [](auto& store) { return support::PutText(store, u"setting", u"kept", u"new").has_value(); },
      [](auto& store) { return (*store.OpenKey(u"setting"))->DeleteValue(u"kept").has_value(); },
      [](auto& store) { return store.DeleteKey(u"tags").has_value(); },
      [](auto& store) { return store.CreateKey(u"tags\\a\\b\\c").has_value(); }};
  const win32::KeyTree before = Everything();
  ASSERT_EQ(before.keys.size(), 2U);
  for (std::size_t count = 0; count <= changes.size(); ++count) {
    KillAfter(count, changes);
    EXPECT_EQ(Everything() == before, count == 0) << count;
    ASSERT_TRUE(registry.BeginGroup());
    EXPECT_EQ(Everything(), before) << count;
    registry.CancelGroup();
    EXPECT_THAT(SubkeyNames(registry, u"tags"), ElementsAre(u"1", u"2")) << count;
  }
}

TEST_F(KilledWriter, TheNextProcessReadsNothingOfTheGroup) {
  KillAfter(1, {[](auto& store) {
              return support::PutText(store, u"tags\\3", u"contact", u"3").has_value();
            }});
  EXPECT_TRUE(OpenOutside(u"tags\\3").IsOpen());
  win32::Win32Registry registry(Place(), Options(u"next-1"));
  EXPECT_THAT(SubkeyNames(registry, u""), IsEmpty());
}

TEST_F(KilledWriter, WhatWasCommittedStays) {
  std::thread([&] {
    win32::Win32Registry killed(Place(), Options(u"killed-1"));
    ASSERT_TRUE(killed.BeginGroup());
    ASSERT_TRUE(support::PutText(killed, u"tags\\1", u"contact", u"one"));
    ASSERT_TRUE(killed.CommitGroup());
  }).join();
  win32::Win32Registry registry(Place(), Options(u"next-1"));
  ASSERT_TRUE(registry.CreateKey(u"tags\\2"));
  EXPECT_THAT(SubkeyNames(registry, u"tags"), ElementsAre(u"1", u"2"));
}

TEST_F(KilledWriter, AGroupOfAnotherOneThatIsOpenIsWaitedForAndNotUndone) {
  win32::RegistryOptions options = Options(u"other-1");
  options.busyLimit = std::chrono::milliseconds(1);
  win32::Win32Registry open(Place(), Options(u"open-1"));
  ASSERT_TRUE(open.BeginGroup());
  ASSERT_TRUE(open.CreateKey(u"tags\\1"));
  std::thread([&] {
    win32::Win32Registry other(Place(), options);
    EXPECT_EQ(support::ErrorOf(other.CreateKey(u"tags\\2")), RegistryError::kBusy);
    EXPECT_TRUE(other.OpenKey(u"tags")) << "Whoever reads waits for nobody.";
  }).join();
  ASSERT_TRUE(open.CommitGroup());
  EXPECT_THAT(SubkeyNames(open, u"tags"), ElementsAre(u"1"));
}

TEST(RegistryPlace, OfAnotherRootFolderIsApartFromThatOfAFolderWithinIt) {
  const auto outer = win32::RegistryPlace::OfRoot(u"C:/Users/Ann/root");
  const auto inner = win32::RegistryPlace::OfRoot(u"C:/Users/Ann/root/Registry");
  EXPECT_EQ(outer.GetName(),
            u"HKEY_CURRENT_USER\\Software\\Voxtrel\\Roots\\C:\\Users\\Ann\\root\\:\\Registry");
  EXPECT_FALSE(inner.path.starts_with(outer.path));
  EXPECT_EQ(win32::RegistryPlace::OfRoot(u"C:/Users/Ann/root/").path, outer.path);
}

/// Keeps what this user decided, and gives it back.
class PlaceOfUser : public testing::Test {
 protected:
  PlaceOfUser() { static_cast<void>(win32::RemoveTree(HKEY_CURRENT_USER, kOwn)); }
  ~PlaceOfUser() override { static_cast<void>(win32::RemoveTree(HKEY_CURRENT_USER, kOwn)); }

  static constexpr std::u16string_view kOwn = u"Software\\Voxtrel";
};

TEST_F(PlaceOfUser, IsDecidedOnceAndForGood) {
  using win32::RegistryPlace;
  using enum RegistryPlace::Deciding;
  const RegistryPlace looked = RegistryPlace::OfUser(kForNow);
  EXPECT_FALSE(win32::OpenSystemKey(HKEY_CURRENT_USER, kOwn, KEY_READ)) << "Nothing is made.";
  EXPECT_EQ(RegistryPlace::OfUser(kForGood).hive, looked.hive);
  const auto own = win32::OpenSystemKey(HKEY_CURRENT_USER, kOwn, KEY_READ | KEY_WRITE);
  ASSERT_TRUE(own);
  ASSERT_TRUE(win32::WriteValue(
      own->Get(), u"Hive",
      {RegistryType::kString, support::Utf16Bytes(std::u16string(u"HKEY_CURRENT_USER") + u'\0')}));
  EXPECT_EQ(RegistryPlace::OfUser(kForNow).hive, HKEY_CURRENT_USER);
  EXPECT_EQ(RegistryPlace::OfUser(kForGood).GetName(), u"HKEY_CURRENT_USER");
}

// Whoever decided again would find no tags there, or hide those that are taught from now on.
TEST_F(PlaceOfUser, IsNotDecidedAgainIfNobodyCanReadWhatWasDecided) {
  using win32::RegistryPlace;
  using enum RegistryPlace::Deciding;
  const auto own = win32::MakeSystemPath(HKEY_CURRENT_USER, kOwn);
  ASSERT_TRUE(own);
  const platform::RegistryValue torn{RegistryType::kString,
                                     support::Utf16Bytes(std::u16string(u"HKEY_LOC"))};
  ASSERT_TRUE(win32::WriteValue(own->Get(), u"Hive", torn));
  const RegistryPlace place = RegistryPlace::OfUser(kForGood);
  EXPECT_EQ(place.hive, nullptr);
  EXPECT_EQ(win32::ReadValue(own->Get(), u"Hive").value().bytes, torn.bytes);
  win32::Win32Registry registry(place);
  EXPECT_EQ(support::ErrorOf(registry.OpenKey(u"Software")), RegistryError::kOther);
  EXPECT_EQ(support::ErrorOf(registry.OpenKey(u"")), RegistryError::kOther);
  EXPECT_EQ(support::ErrorOf(registry.CreateKey(u"Software\\Tag")), RegistryError::kOther);
}

}  // namespace
