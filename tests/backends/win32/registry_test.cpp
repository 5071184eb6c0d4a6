#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <string>
#include <thread>

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

TEST_F(Win32RegistryTest, KeysOfAnotherProgramFollowInTheOrderOfTheirNumbers) {
  win32::Win32Registry registry(Place(), {{}, {u"tags"}});
  ASSERT_TRUE(registry.CreateKey(u"tags\\7"));
  // A file that is imported makes all of its keys in one moment.
  const win32::SystemKey tags = OpenOutside(u"tags");
  for (const auto* const name : {u"90", u"1000"}) {
    ASSERT_TRUE(win32::MakeSystemKey(tags.Get(), name));
  }
  const auto names = SubkeyNames(registry, u"tags");
  ASSERT_EQ(names.size(), 3U);
  EXPECT_EQ(names[0], u"7");
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

}  // namespace
