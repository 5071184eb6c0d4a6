#include "host/panel/arguments.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

std::variant<panel::Arguments, int> Parse(std::vector<const char*> arguments) {
  arguments.insert(arguments.begin(), "voxtrel-panel");
  return panel::ParseArguments(static_cast<int>(arguments.size()), arguments.data());
}

TEST(Arguments, AreTheWindowWithTheInstalledAppletsIfThereAreNone) {
  const auto parsed = Parse({});
  const auto& arguments = std::get<panel::Arguments>(parsed);
  EXPECT_EQ(arguments.mode, panel::Mode::kShow);
  EXPECT_TRUE(arguments.places.empty());
}

TEST(Arguments, NameAppletsAndFolders) {
  const auto parsed = Parse({"/", "/usr"});
  EXPECT_EQ(std::get<panel::Arguments>(parsed).places, (std::vector<std::string>{"/", "/usr"}));
}

TEST(Arguments, OfFilesInTheCurrentFolderAreNotTaken) {
  for (const char* place : {".", "./", "..", "", "CMakeFiles"}) {
    EXPECT_EQ(std::get<int>(Parse({place})), 2) << place;
  }
  for (const char* file : {"./voxtrel.cpl", "../voxtrel.cpl", "applet/voxtrel.cpl"}) {
    EXPECT_EQ(std::get<int>(Parse({"--open", file})), 2) << file;
    EXPECT_EQ(std::get<int>(Parse({"--inquire", file})), 2) << file;
  }
  EXPECT_EQ(std::get<int>(Parse({"--inquire", "voxtrel.cpl"})), 2);
}

TEST(Arguments, AreQuotedWithoutWhatATerminalMightTakeForACommand) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(std::get<int>(Parse({"--opne\x1B]0;x\x07\u202E\u009B"})), 2);
  const std::string said = testing::internal::GetCapturedStderr();
  EXPECT_NE(said.find("--opne ]0;x  \n"), std::string::npos) << said;
}

TEST(Arguments, OpenOneApplet) {
  const auto parsed = Parse({"--open", "voxtrel.cpl"});
  const auto& arguments = std::get<panel::Arguments>(parsed);
  EXPECT_EQ(arguments.mode, panel::Mode::kOpen);
  EXPECT_EQ(arguments.applet, "voxtrel.cpl");
  EXPECT_EQ(arguments.number, 0);
  EXPECT_FALSE(arguments.isWatched);
}

TEST(Arguments, HelpAndVersionEndWithSuccess) {
  EXPECT_EQ(std::get<int>(Parse({"--help"})), 0);
  EXPECT_EQ(std::get<int>(Parse({"--version"})), 0);
}

TEST(Arguments, WrongOnesEndWithTheCodeOfWrongUsage) {
  EXPECT_EQ(std::get<int>(Parse({"--unknown"})), 2);
  EXPECT_EQ(std::get<int>(Parse({"--open"})), 2);
  EXPECT_EQ(std::get<int>(Parse({"/no/such/applet.cpl"})), 2);
  EXPECT_EQ(std::get<int>(Parse({"--open", "a.cpl", "/"})), 2);
  EXPECT_EQ(std::get<int>(Parse({"--number", "1"})), 2);
}

}  // namespace
