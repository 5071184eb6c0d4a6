#include "platform/loading/loaded_library.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tests/support/temp_folder.h"

namespace loading {
namespace {

using Paths = std::vector<std::filesystem::path>;

TEST(LoadedLibrary, TheOwnFileOfAProgramIsItself) {
  EXPECT_EQ(FindOwnFile(), std::filesystem::canonical(LOADING_TEST));
}

TEST(LoadedLibrary, TheOwnFileOfALibraryIsTheLibrary) {
  const LoadedFunction found = LoadFunction(Paths{SMALL_DOOR}, "TellOwnFile");
  ASSERT_NE(found.address, nullptr) << found.reason;
  std::string file;
  reinterpret_cast<void (*)(std::string&)>(found.address)(file);
  EXPECT_EQ(file, std::filesystem::canonical(SMALL_DOOR));
}

TEST(LoadedLibrary, AFunctionIsFoundInTheFirstLibraryThatIsThere) {
  const LoadedFunction found = LoadFunction(Paths{"/nowhere/a.so", SMALL_DOOR}, "TellFortyTwo");
  ASSERT_NE(found.address, nullptr) << found.reason;
  EXPECT_EQ(reinterpret_cast<int (*)()>(found.address)(), 42);
  EXPECT_EQ(found.reason, "");
}

TEST(LoadedLibrary, ALibraryThatIsNowhereIsTold) {
  const LoadedFunction found = LoadFunction(Paths{"/nowhere/a.so", "/nobody/a.so"}, "TellFortyTwo");
  EXPECT_EQ(found.address, nullptr);
  EXPECT_EQ(found.reason, "a.so is missing");
  EXPECT_EQ(LoadFunction(Paths{}, "TellFortyTwo").address, nullptr);
}

TEST(LoadedLibrary, AFileThatIsNoLibraryIsTold) {
  const support::TempFolder folder;
  const std::filesystem::path file = folder.Path() / "text.so";
  std::ofstream(file) << "no library at all, and long enough to look like one";
  const LoadedFunction found = LoadFunction(Paths{file, SMALL_DOOR}, "TellFortyTwo");
  EXPECT_EQ(found.address, nullptr);
  EXPECT_THAT(found.reason, testing::HasSubstr("text.so"));
}

TEST(LoadedLibrary, AFunctionThatIsNotExportedIsTold) {
  const LoadedFunction found = LoadFunction(Paths{SMALL_DOOR}, "TellNothing");
  EXPECT_EQ(found.address, nullptr);
  EXPECT_THAT(found.reason, testing::HasSubstr("TellNothing"));
}

}  // namespace
}  // namespace loading
