#include "backends/loading/loaded_library.h"

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

/// A build, by its cache, in a folder where a user may have others.
class LoadedLibraryPlaces : public testing::Test {
 protected:
  LoadedLibraryPlaces() { std::ofstream(m_build / "CMakeCache.txt") << ""; }

  [[nodiscard]] static Paths PlacesOf(const std::filesystem::path& file) {
    return FindLibraryPlaces(file, "a.so", "pulse");
  }

  const support::TempFolder m_folder;
  const std::filesystem::path m_build = m_folder.Path();
};

TEST_F(LoadedLibraryPlaces, OfABuildAreInThatBuild) {
  for (const char* file : {"applet/voxtrel.cpl", "host/cli/voxtrel", "tests/host/cli/cli_tests"}) {
    EXPECT_EQ(FindBuildFolder(m_build / file), m_build) << file;
    EXPECT_THAT(PlacesOf(m_build / file),
                testing::ElementsAre((m_build / file).parent_path() / "a.so",
                                     m_build / "backends/pulse/a.so"));
  }
}

TEST_F(LoadedLibraryPlaces, OfAnInstalledProgramAreInItsOwnLibFolderAlone) {
  EXPECT_EQ(FindBuildFolder(m_build / "bin/voxtrel"), "");
  EXPECT_EQ(FindBuildFolder(m_build / ".local/bin/voxtrel"), "");
  EXPECT_THAT(
      PlacesOf("/home/ann/.local/bin/voxtrel"),
      testing::ElementsAre("/home/ann/.local/bin/a.so", "/home/ann/.local/lib/voxtrel/a.so"));
}

TEST_F(LoadedLibraryPlaces, FoldersNamedAsThoseOfABuildMakeNone) {
  std::filesystem::remove(m_build / "CMakeCache.txt");
  EXPECT_EQ(FindBuildFolder(m_build / "applet/voxtrel.cpl"), "");
  EXPECT_EQ(FindBuildFolder(m_build / "host/cli/voxtrel"), "");
}

TEST_F(LoadedLibraryPlaces, AreNoneWhereTheOwnFileIsNotKnown) {
  EXPECT_THAT(PlacesOf(""), testing::IsEmpty());
  EXPECT_THAT(PlacesOf("voxtrel"), testing::IsEmpty());
  EXPECT_EQ(FindBuildFolder("host/cli/voxtrel"), "");
}

}  // namespace
}  // namespace loading
