#include "backends/posix/loaded_library.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tests/support/results.h"
#include "tests/support/temp_folder.h"

namespace posix {
namespace {

using Paths = std::vector<std::filesystem::path>;

TEST(LoadedLibrary, TheOwnFileOfAProgramIsItself) {
  EXPECT_EQ(FindOwnFile(), std::filesystem::canonical(POSIX_TEST));
}

TEST(LoadedLibrary, TheOwnFileOfALibraryIsTheLibrary) {
  const auto found = LoadFunction(Paths{SMALL_DOOR}, "TellOwnFile");
  ASSERT_TRUE(found) << found.error();
  std::string file;
  reinterpret_cast<void (*)(std::string&)> (*found)(file);
  EXPECT_EQ(file, std::filesystem::canonical(SMALL_DOOR));
}

TEST(LoadedLibrary, AFunctionIsFoundInTheFirstLibraryThatIsThere) {
  const auto found = LoadFunction(Paths{"/nowhere/a.so", SMALL_DOOR}, "TellFortyTwo");
  ASSERT_TRUE(found) << found.error();
  EXPECT_EQ(reinterpret_cast<int (*)()>(*found)(), 42);
}

TEST(LoadedLibrary, ALibraryThatIsNowhereIsReported) {
  const auto found = LoadFunction(Paths{"/nowhere/a.so", "/nobody/a.so"}, "TellFortyTwo");
  EXPECT_EQ(support::ErrorOf(found), "a.so is missing");
  EXPECT_FALSE(LoadFunction(Paths{}, "TellFortyTwo"));
}

TEST(LoadedLibrary, AFileThatIsNoLibraryIsReported) {
  const support::TempFolder folder;
  const std::filesystem::path file = folder.Path() / "text.so";
  std::ofstream(file) << "no library at all, and long enough to look like one";
  const auto found = LoadFunction(Paths{file, SMALL_DOOR}, "TellFortyTwo");
  ASSERT_FALSE(found);
  EXPECT_THAT(found.error(), testing::HasSubstr("text.so"));
}

TEST(LoadedLibrary, AFunctionThatIsNotExportedIsReported) {
  const auto found = LoadFunction(Paths{SMALL_DOOR}, "TellNothing");
  ASSERT_FALSE(found);
  EXPECT_THAT(found.error(), testing::HasSubstr("TellNothing"));
}

}  // namespace
}  // namespace posix
