#include <filesystem>
#include <fstream>

#include "tests/cli/command_fixture.h"

namespace {

using testing::HasSubstr;

class WaveCommands : public CommandFixture {};

TEST_F(WaveCommands, RecordFromAWaveFileInsteadOfTheMicrophone) {
  const std::string sample = std::string(VOXTREL_SAMPLES_DIR) + "/anna_1.wav";
  const std::string target = Path("new.wav");
  auto json =
      RunJson({"--microphone", sample, "wave", "record", target, "--milliseconds", "100"}, 0);
  EXPECT_EQ(json["code"], 0);
  EXPECT_EQ(json["bytes"], 2205);
  EXPECT_EQ(std::filesystem::file_size(target), 44U + 2205U);
}

TEST_F(WaveCommands, RecordTakesThreeSecondsUnlessToldOtherwise) {
  const std::string sample = std::string(VOXTREL_SAMPLES_DIR) + "/anna_1.wav";
  const std::string target = Path("new.wav");
  const auto run = Run({"--microphone", sample, "wave", "record", target});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(std::filesystem::file_size(target), 66194U);
  std::ifstream a(sample, std::ios::binary);
  std::ifstream b(target, std::ios::binary);
  EXPECT_TRUE(std::equal(std::istreambuf_iterator<char>(a), {}, std::istreambuf_iterator<char>(b)));
}

TEST_F(WaveCommands, RecordWithoutAMicrophoneSaysSo) {
  const auto run = Run({"wave", "record", Path("new.wav")});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.out, "");
  EXPECT_THAT(run.err,
              HasSubstr("Zedra Voxtrel: There are no wave-record devices in you computer."));
  EXPECT_FALSE(std::filesystem::exists(Path("new.wav")));
}

TEST_F(WaveCommands, RecordFromAFileThatIsNoneNamesTheFile) {
  const auto missing = Run({"--microphone", Path("none.wav"), "wave", "record", Path("new.wav")});
  EXPECT_EQ(missing.exitCode, 1);
  EXPECT_THAT(missing.err, HasSubstr("none.wav: it cannot be opened"));
  std::ofstream(Path("text.wav")) << std::string(50, 'x');
  const auto text = Run({"--microphone", Path("text.wav"), "wave", "record", Path("new.wav")});
  EXPECT_EQ(text.exitCode, 1);
  EXPECT_THAT(text.err, HasSubstr("text.wav is no wave file of 11,025 Hz, mono, 16 bit (code 2)"));
}

TEST_F(WaveCommands, RecordDoesNotEmptyTheFileThatItIsToHear) {
  const std::string wave = CopySample("anna_1.wav");
  const auto run = Run({"--microphone", wave, "wave", "record", Path("./anna_1.wav")});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_THAT(run.err, HasSubstr("microphone and recording at once"));
  EXPECT_EQ(std::filesystem::file_size(wave), 66194U);
}

TEST_F(WaveCommands, RecordIntoAMissingFolderSaysSo) {
  const std::string sample = std::string(VOXTREL_SAMPLES_DIR) + "/anna_1.wav";
  const auto json = RunJson({"--microphone", sample, "wave", "record", Path("none/new.wav")}, 1);
  EXPECT_EQ(json["code"], 1);
  EXPECT_EQ(json["bytes"], 0);
}

TEST_F(WaveCommands, CheckTellsWhereTheSamplesAre) {
  const auto json = RunJson({"wave", "check", std::string(VOXTREL_SAMPLES_DIR) + "/anna_1.wav"}, 0);
  EXPECT_EQ(json, (nlohmann::json{{"code", 0}, {"dataOffset", 44}, {"dataBytes", 66150}}));
}

TEST_F(WaveCommands, CheckTellsTheCodeOfAFileThatIsNone) {
  std::ofstream(Path("text.wav")) << std::string(50, 'x');
  EXPECT_EQ(RunJson({"wave", "check", Path("text.wav")}, 1)["code"], 2);
  std::ofstream(Path("short.wav")) << "RIFF";
  EXPECT_EQ(RunJson({"wave", "check", Path("short.wav")}, 1)["code"], 1);
  EXPECT_EQ(RunJson({"wave", "check", Path("missing.wav")}, 1)["code"], -1);
}

TEST_F(WaveCommands, WrongUsageIsTwo) {
  EXPECT_EQ(Run({}).exitCode, 2);
  EXPECT_EQ(Run({"wave"}).exitCode, 2);
  EXPECT_EQ(Run({"wave", "record"}).exitCode, 2);
  EXPECT_EQ(Run({"wave", "record", Path("a.wav"), "--milliseconds", "0"}).exitCode, 2);
  EXPECT_EQ(Run({"wave", "record", Path("a.wav"), "--milliseconds", "x"}).exitCode, 2);
  EXPECT_EQ(Run({"wave", "check", "a", "b"}).exitCode, 2);
  EXPECT_EQ(Run({"unknown"}).exitCode, 2);
}

TEST_F(WaveCommands, HelpShowsExamplesAndVersionANumber) {
  const auto help = Run({"--help"});
  EXPECT_EQ(help.exitCode, 0);
  EXPECT_THAT(help.out, HasSubstr("voxtrel wave record ann.wav"));
  const auto version = Run({"--version"});
  EXPECT_EQ(version.exitCode, 0);
  EXPECT_THAT(version.out, testing::StartsWith("voxtrel "));
}

}  // namespace
