#include <filesystem>
#include <fstream>

#include "storage/registry_keys.h"
#include "tests/host/cli/command_fixture.h"
#include "tests/support/registry_access.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;

class ConnectionCommands : public CommandFixture {
 protected:
  /// What the dialer would read, "" if there is nothing.
  [[nodiscard]] std::vector<std::byte> Stored(std::u16string_view name) const {
    const auto store = Registry();
    platform::Registry& registry = *store;
    return support::BytesOf(registry, storage::kDialerKey, name);
  }
  /// Runs the program while no file may grow beyond that many halves of a KiB.
  [[nodiscard]] auto RunWithSmallFiles(int halfKibibytes, const std::string& arguments) const {
    const std::string command = "trap '' XFSZ; ulimit -f " + std::to_string(halfKibibytes) +
                                "; exec \"$PROGRAM\" --root \"$ROOT\" " + arguments;
    return support::RunProgram({"/bin/sh", "-c", command},
                               {"PROGRAM=" + std::string(VOXTREL_PROGRAM), "ROOT=" + Path("root")});
  }
  [[nodiscard]] static std::vector<std::byte> Bytes(std::u16string_view text, std::size_t count) {
    auto bytes = support::Utf16Bytes(text);
    bytes.resize(count);
    return bytes;
  }
};

TEST_F(ConnectionCommands, ShowPrintsTheDefaultsOfANewStore) {
  const auto run = Run({"connection", "show"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(run.out, HasSubstr("port         COM2:\nbaud-rate    9600\ndata-bits    8\n"
                                 "stop-bits    1\nflow-control none\nbt-headset   0\n"
                                 "no-hang-up   0\n"));
  const auto answer = RunJson({"connection", "show"}, 0);
  EXPECT_EQ(answer["port"], "COM2:");
  EXPECT_EQ(answer["baudRate"], "9600");
  EXPECT_EQ(answer["btHeadset"], false);
  EXPECT_TRUE(answer["ports"].is_array());
  EXPECT_THAT(Stored(u"Bound_rate"), IsEmpty()) << "Looking stores nothing.";
}

TEST_F(ConnectionCommands, SetStoresEverySettingAsThePageDoes) {
  const auto answer = RunJson({"connection", "set", "port=COM7:", "baud-rate=115200", "data-bits=7",
                               "stop-bits=1.5", "flow-control=hardware", "no-hang-up=yes"},
                              0);
  EXPECT_EQ(answer["port"], "COM7:");
  EXPECT_EQ(answer["stopBits"], "1.5");
  EXPECT_EQ(answer["noHangUp"], true);
  EXPECT_EQ(Stored(u"Com_port"), Bytes(u"COM7:", 200));
  EXPECT_EQ(Stored(u"Bound_rate"), Bytes(u"115200", 32));
  EXPECT_EQ(Stored(u"Data_bit"), Bytes(u"7", 32));
  EXPECT_EQ(Stored(u"Stop_bit"), Bytes(u"1.5", 32));
  EXPECT_EQ(Stored(u"Flow_control"), Bytes(u"hardware", 32));
  EXPECT_EQ(Stored(u"is_BT"), Bytes(u"0", 4));
  EXPECT_EQ(Stored(u"is_HU"), Bytes(u"1", 4));
  EXPECT_EQ(RunJson({"connection", "show"}, 0), answer);
}

TEST_F(ConnectionCommands, WhatIsNotNamedStaysAsItWas) {
  ASSERT_EQ(Run({"connection", "set", "port=COM7:", "bt-headset=1"}).exitCode, 0);
  ASSERT_EQ(Run({"connection", "set", "baud-rate=300"}).exitCode, 0);
  const auto answer = RunJson({"connection", "show"}, 0);
  EXPECT_EQ(answer["port"], "COM7:");
  EXPECT_EQ(answer["btHeadset"], true);
  EXPECT_EQ(answer["baudRate"], "300");
}

TEST_F(ConnectionCommands, TheNamesThatTheDialerReadsMeanTheSame) {
  ASSERT_EQ(Run({"connection", "set", "Bound_rate=600", "is_hu=1", "is_BT=off"}).exitCode, 0);
  EXPECT_EQ(Stored(u"Bound_rate"), Bytes(u"600", 32));
  EXPECT_EQ(Stored(u"is_HU"), Bytes(u"1", 4));
}

TEST_F(ConnectionCommands, AValueThatIsNoChoiceIsWrongUsageReportedWithTheChoicesAndStoresNothing) {
  const auto run = Run({"connection", "set", "port=COM7:", "stop-bits=3"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_THAT(run.err, HasSubstr("stop-bits is one of: 1, 1.5, 2\n"));
  for (const char* argument : {"bt-headset=maybe", "bt-headset=", "no-hang-up=2"}) {
    const auto wrong = Run({"connection", "set", argument});
    EXPECT_EQ(wrong.exitCode, 2);
    EXPECT_THAT(wrong.err, HasSubstr(" is 1 or 0 (yes or no, on or off, true or false)"));
  }
  EXPECT_THAT(Stored(u"Com_port"), IsEmpty());
}

TEST_F(ConnectionCommands, WhatIsNoPortIsWrongUsageAndThePortsAreListedOnce) {
  ASSERT_EQ(Run({"connection", "show"}).exitCode, 0);
  for (const char* port : {"ttyS0", "COM0:", "COM07:", "COM100:", "COM:", "COM1::", "COMX:", ""}) {
    const auto run = Run({"connection", "set", std::string("port=") + port});
    EXPECT_EQ(run.exitCode, 2) << port;
    EXPECT_THAT(run.err, HasSubstr("port is one of: COM1: to COM99:\n")) << port;
  }
  EXPECT_THAT(Stored(u"Com_port"), IsEmpty());
}

TEST_F(ConnectionCommands, APortIsTakenWithoutItsColonAndInAnyLetterCase) {
  for (const char* port : {"COM7", "com7", "Com7:"}) {
    ASSERT_EQ(Run({"connection", "set", "port=COM8:"}).exitCode, 0);
    ASSERT_EQ(Run({"connection", "set", std::string("port=") + port}).exitCode, 0) << port;
    EXPECT_EQ(Stored(u"Com_port"), Bytes(u"COM7:", 200)) << port;
  }
  ASSERT_EQ(Run({"connection", "set", "port=com99"}).exitCode, 0);
  EXPECT_EQ(Stored(u"Com_port"), Bytes(u"COM99:", 200));
}

TEST_F(ConnectionCommands, ABoxIsSetByEachUsualWord) {
  for (const char* word : {"1", "yes", "on", "true"}) {
    ASSERT_EQ(Run({"connection", "set", "no-hang-up=0"}).exitCode, 0);
    ASSERT_EQ(Run({"connection", "set", std::string("no-hang-up=") + word}).exitCode, 0) << word;
    EXPECT_EQ(Stored(u"is_HU"), Bytes(u"1", 4)) << word;
  }
  for (const char* word : {"0", "no", "off", "false"}) {
    ASSERT_EQ(Run({"connection", "set", "no-hang-up=1"}).exitCode, 0);
    ASSERT_EQ(Run({"connection", "set", std::string("no-hang-up=") + word}).exitCode, 0) << word;
    EXPECT_EQ(Stored(u"is_HU"), Bytes(u"0", 4)) << word;
  }
}

TEST_F(ConnectionCommands, AnUnknownNameIsWrongUsage) {
  for (const char* argument : {"speed=9600", "port", "=1"}) {
    const auto run = Run({"connection", "set", argument});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_THAT(run.err, HasSubstr("port, baud-rate, data-bits"));
  }
  EXPECT_EQ(Run({"connection", "set"}).exitCode, 2);
}

TEST_F(ConnectionCommands, ADamagedStoreIsReportedAndKept) {
  std::filesystem::create_directory(Path("root"));
  const std::string store = NameOfStore(Path("root"));
  std::ofstream(store, std::ios::binary) << std::string(5000, 'x');
  for (const auto& run : {Run({"connection", "show"}), Run({"connection", "set", "port=COM1:"})}) {
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("damaged"));
    EXPECT_THAT(run.out, IsEmpty());
  }
  EXPECT_EQ(std::filesystem::file_size(store), 5000U);
}

TEST_F(ConnectionCommands, AStoreThatTakesNothingIsNotTakenForDone) {
  ASSERT_EQ(Run({"connection", "set", "port=COM7:"}).exitCode, 0);
  const auto run = RunWithSmallFiles(16, "connection set port=COM8: no-hang-up=1");
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("could not be stored: the disk is full"));
  EXPECT_THAT(run.out, HasSubstr("no-hang-up   0")) << "Shown is what is stored.";
}

TEST_F(ConnectionCommands, SettingsOfOneCommandAreStoredTogetherOrNotAtAll) {
  bool isRefused = false;
  bool isDone = false;
  for (int halfKibibytes = 16; halfKibibytes < 160; halfKibibytes += 8) {
    ASSERT_EQ(Run({"connection", "set", "baud-rate=9600", "no-hang-up=0"}).exitCode, 0);
    const auto run =
        RunWithSmallFiles(halfKibibytes, "connection set baud-rate=19200 no-hang-up=1");
    const bool isRateStored = Stored(u"Bound_rate") == Bytes(u"19200", 32);
    EXPECT_EQ(Stored(u"is_HU") == Bytes(u"1", 4), isRateStored) << halfKibibytes;
    EXPECT_EQ(run.exitCode == 0, isRateStored) << run.err;
    isRefused = isRefused || !isRateStored;
    isDone = isDone || isRateStored;
  }
  EXPECT_TRUE(isRefused);
  EXPECT_TRUE(isDone);
}

TEST_F(ConnectionCommands, WithoutAScreenTheOtherWaysAreReported) {
  const auto run = support::RunProgram({VOXTREL_PROGRAM, "--root", Path("root"), "connection"},
                                       {"DISPLAY=", "WAYLAND_DISPLAY=", "QT_QPA_PLATFORM="});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("voxtrel connection show"));
}

TEST_F(ConnectionCommands, AWindowThatCannotBeShownIsReportedWithTheOtherWays) {
  const auto run = support::RunProgram({VOXTREL_PROGRAM, "--root", Path("root"), "connection"},
                                       {"QT_QPA_PLATFORM=nothing-of-that-name"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("could not be shown"));
}

TEST_F(ConnectionCommands, ShowsTheSettingsOfANewRootWithoutMakingIt) {
  const auto before = RunJson({"connection", "show"}, 0);
  EXPECT_FALSE(std::filesystem::exists(Path("root")));
  static_cast<void>(RunJson({"connection", "set", "port=COM7:"}, 0));
  EXPECT_EQ(RunJson({"connection", "set", "port=" + std::string(before["port"])}, 0), before);
}

}  // namespace
