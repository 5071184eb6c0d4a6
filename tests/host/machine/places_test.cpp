#include "host/machine/places.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/support/temp_folder.h"

namespace machine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A build, by its cache, in a folder where a user may have others.
class MachinePlaces : public testing::Test {
 protected:
  MachinePlaces() { std::ofstream(m_build / "CMakeCache.txt") << ""; }

  const support::TempFolder m_folder;
  const std::filesystem::path m_build = m_folder.Path();
};

TEST_F(MachinePlaces, OfABuildAreInThatBuild) {
  for (const char* file :
       {"host/applet/voxtrel.cpl", "host/cli/voxtrel", "tests/host/cli/cli_tests"}) {
    const Places places(m_build / file);
    EXPECT_EQ(places.GetProgram(kPanel), m_build / "host/panel/voxtrel-panel") << file;
    EXPECT_EQ(places.GetAppletFolder(), m_build / "host/applet") << file;
    EXPECT_EQ(places.GetDataFolder(), m_build / "share/voxtrel") << file;
    EXPECT_THAT(places.GetLibrary("a.so", "backends/a"),
                ElementsAre((m_build / file).parent_path() / "a.so", m_build / "backends/a/a.so"));
  }
}

TEST_F(MachinePlaces, OfAnInstalledPartAreWhereItIsInstalled) {
  const std::filesystem::path local = "/home/ann/.local";
  for (const char* file : {"bin/voxtrel", "lib/voxtrel/voxtrel.cpl"}) {
    const Places places(local / file);
    EXPECT_EQ(places.GetAppletFolder(), local / "lib/voxtrel") << file;
    EXPECT_EQ(places.GetDataFolder(), local / "share/voxtrel") << file;
    EXPECT_THAT(places.GetLibrary("a.so", "backends/a"),
                ElementsAre((local / file).parent_path() / "a.so", local / "lib/voxtrel/a.so"));
  }
  EXPECT_EQ(Places(local / "bin/voxtrel").GetProgram(kPanel), local / "bin/voxtrel-panel");
}

TEST_F(MachinePlaces, AnInstalledPartIsNoneOfABuildAboveIt) {
  EXPECT_EQ(Places(m_build / "bin/voxtrel").GetAppletFolder(), m_build / "lib/voxtrel");
  EXPECT_EQ(Places(m_build / ".local/bin/voxtrel").GetAppletFolder(),
            m_build / ".local/lib/voxtrel");
}

TEST_F(MachinePlaces, FoldersNamedAsThoseOfABuildMakeNone) {
  std::filesystem::remove(m_build / "CMakeCache.txt");
  EXPECT_EQ(Places(m_build / "host/cli/voxtrel").GetProgram(kPanel),
            m_build / "host/cli/voxtrel-panel");
  EXPECT_EQ(Places(m_build / "host/applet/voxtrel.cpl").GetDataFolder(),
            m_build / "host/share/voxtrel");
}

TEST_F(MachinePlaces, AreNoneIfTheOwnFileIsNotKnown) {
  for (const char* file : {"", "voxtrel", "host/cli/voxtrel"}) {
    const Places places(file);
    EXPECT_EQ(places.GetProgram(kCommandLine), "") << file;
    EXPECT_EQ(places.GetAppletFolder(), "") << file;
    EXPECT_EQ(places.GetDataFolder(), "") << file;
    EXPECT_THAT(places.GetLibrary("a.so", "backends/a"), IsEmpty()) << file;
  }
}

}  // namespace
}  // namespace machine
