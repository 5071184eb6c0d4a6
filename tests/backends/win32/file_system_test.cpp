#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <optional>

#include "backends/win32/host_paths.h"
#include "backends/win32/win32_file_system.h"
#include "backends/win32/windows.h"
#include "tests/support/file_bytes.h"
#include "tests/support/results.h"
#include "tests/support/temp_folder.h"

namespace {

using platform::FileError;

class Win32Files : public testing::Test {
 protected:
  [[nodiscard]] platform::FileSystem& Files() { return m_files; }
  [[nodiscard]] const std::filesystem::path& Root() const { return m_root.Path(); }

 private:
  support::TempFolder m_root;
  win32::Win32FileSystem m_files{m_root.Text()};
};

TEST_F(Win32Files, APathOfTheHostIsReadWithEitherSlash) {
  std::ofstream(Root() / "f") << "abc";
  EXPECT_EQ(support::ReadWhole(Files(), Root().u16string() + u"/f"), "abc");
  EXPECT_EQ(support::ReadWhole(Files(), Root().generic_u16string() + u"/f"), "abc");
}

TEST_F(Win32Files, APathOfTheHostKeepsTheDotAtTheEndOfAFolder) {
  ASSERT_TRUE(Files().CreateFolder(u"\\Maker."));
  ASSERT_TRUE(support::WriteWhole(Files(), u"\\Maker.\\f", "abc"));
  for (const std::u16string_view path :
       {u"/Maker./f", u"\\Maker.\\f", u"/Maker./../Maker.//./f", u"/Maker./f."}) {
    EXPECT_EQ(support::ReadWhole(Files(), Root().u16string() + std::u16string(path)), "abc");
  }
  ASSERT_TRUE(support::WriteWhole(Files(), Root().u16string() + u"/Maker./new", "new"));
  EXPECT_EQ(support::ReadWhole(Files(), u"\\Maker.\\new"), "new");
}

TEST_F(Win32Files, ADotThatNoFolderHasCountsAsTheSystemCountsIt) {
  ASSERT_TRUE(Files().CreateFolder(u"\\plain"));
  ASSERT_TRUE(support::WriteWhole(Files(), u"\\plain\\f", "abc"));
  EXPECT_EQ(support::ReadWhole(Files(), Root().u16string() + u"/plain./f"), "abc");
  EXPECT_EQ(support::ReadWhole(Files(), Root().u16string() + u"/plain/f."), "abc");
}

TEST_F(Win32Files, APathInItsLongFormIsTakenAsItIs) {
  ASSERT_TRUE(support::WriteWhole(Files(), u"\\f.", "abc"));
  const std::u16string path = u"//?/" + Root().generic_u16string();
  EXPECT_EQ(support::ReadWhole(Files(), path + u"/f."), "abc");
  EXPECT_FALSE(Files().Open(path + u"/f", {}));
}

TEST_F(Win32Files, APathMayBeLongerThan260Units) {
  std::u16string path;
  for (int i = 0; i < 5; ++i) {
    path += u"\\" + std::u16string(100, u'n');
    ASSERT_TRUE(Files().CreateFolder(path));
  }
  const std::u16string file = path + u"\\f";
  ASSERT_TRUE(support::WriteWhole(Files(), file, "abc"));
  EXPECT_EQ(support::ReadWhole(Files(), file), "abc");
  EXPECT_TRUE(Files().Find(file));
  EXPECT_TRUE(Files().Delete(file));
  // The library that takes the test's folder away does not know such paths.
  const std::u16string root = win32::ToLongPath(Root().generic_u16string()).value();
  for (; !path.empty(); path.resize(path.rfind(u'\\'))) {
    EXPECT_NE(::RemoveDirectoryW(reinterpret_cast<const wchar_t*>((root + path).c_str())), FALSE);
  }
}

TEST_F(Win32Files, ADevicePathNamesNoStreamOfAFile) {
  ASSERT_TRUE(support::WriteWhole(Files(), u"\\f", "abc"));
  for (const std::u16string_view path : {u"\\f:stream", u"\\f::$DATA", u"\\a<b", u"\\a|b"}) {
    EXPECT_FALSE(support::WriteWhole(Files(), path, "x"));
    EXPECT_EQ(support::ErrorOf(Files().Open(path, {})), FileError::kNotFound);
  }
}

TEST_F(Win32Files, AStarInAPathToOpenIsNoPattern) {
  ASSERT_TRUE(support::WriteWhole(Files(), u"\\f", "abc"));
  EXPECT_EQ(support::ErrorOf(Files().Open(u"\\*", {})), FileError::kNotFound);
  EXPECT_EQ(support::ErrorOf(Files().Delete(u"\\?")), FileError::kNotFound);
  EXPECT_EQ(support::ErrorOf(Files().OpenReplacement(u"\\*")), FileError::kNotFound);
  EXPECT_EQ(support::ReadWhole(Files(), u"\\f"), "abc");
}

TEST_F(Win32Files, ASearchMatchesNoShortNames) {
  ASSERT_TRUE(support::WriteWhole(Files(), u"\\1.store", "abc"));
  EXPECT_EQ(support::ErrorOf(Files().Find(u"\\*.st")), FileError::kNotFound);
}

TEST_F(Win32Files, FoldersAreMadeWithAllOnTheirWay) {
  const auto path = win32::ToLongPath((Root() / "a" / "b" / "c").generic_u16string());
  ASSERT_TRUE(path);
  EXPECT_TRUE(win32::MakeFolders(*path));
  EXPECT_TRUE(std::filesystem::is_directory(Root() / "a" / "b" / "c"));
  EXPECT_TRUE(win32::MakeFolders(*path)) << "It is there already.";
  std::ofstream(Root() / "file") << "abc";
  const auto below = win32::ToLongPath((Root() / "file" / "c").generic_u16string());
  EXPECT_FALSE(win32::MakeFolders(*below));
}

TEST_F(Win32Files, AProgramThatHoldsAFileKeepsItFromBeingReplaced) {
  ASSERT_TRUE(support::WriteWhole(Files(), u"\\f", "old"));
  const HANDLE other = ::CreateFileW((Root() / "f").c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                     OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  const auto replacement = Files().OpenReplacement(u"\\f");
  ASSERT_TRUE(replacement);
  EXPECT_EQ(support::ErrorOf((*replacement)->Publish(platform::Durability::kNow)),
            FileError::kSharingViolation);
  ::CloseHandle(other);
  EXPECT_TRUE((*replacement)->Publish(platform::Durability::kNow));
  EXPECT_EQ(support::ReadWhole(Files(), u"\\f"), "");
}

}  // namespace
