#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/host/cli/command_fixture.h"

namespace {

using testing::HasSubstr;

class WaveCommands : public CommandFixture {
 protected:
  /// A recording of a tenth of a second, after which the player does not wait for long.
  [[nodiscard]] std::string MakeShortRecording() const {
    const std::string sample = std::string(VOXTREL_SAMPLES_DIR) + "/anna_1.wav";
    std::string target = Path("short.wav");
    const auto run =
        Run({"--microphone", sample, "wave", "record", target, "--milliseconds", "100"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    return target;
  }

  /// Writes `bytes` and expects `code` of playing it, and `reason` in words.
  void ExpectPlayFails(const std::string& bytes, int code, const std::string& reason) const {
    const std::string file = Path("faulty.wav");
    std::ofstream(file, std::ios::binary) << bytes;
    const std::string heard = Path("heard.wav");
    EXPECT_EQ(RunJson({"--speaker", heard, "wave", "play", file}, 1)["code"], code);
    const auto run = Run({"--speaker", heard, "wave", "play", file});
    EXPECT_FALSE(std::filesystem::exists(heard));
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, HasSubstr("voxtrel: " + file + " was not played: "));
    EXPECT_THAT(run.err, HasSubstr(reason));
    EXPECT_THAT(run.err, HasSubstr("(code " + std::to_string(code) + ")"));
  }

  [[nodiscard]] static std::string Read(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
};

TEST_F(WaveCommands, RecordFromAWaveFileInsteadOfTheMicrophone) {
  const std::string sample = std::string(VOXTREL_SAMPLES_DIR) + "/anna_1.wav";
  const std::string target = Path("new.wav");
  auto answer =
      RunJson({"--microphone", sample, "wave", "record", target, "--milliseconds", "100"}, 0);
  EXPECT_EQ(answer["code"], 0);
  EXPECT_EQ(answer["bytes"], 2205);
  EXPECT_EQ(std::filesystem::file_size(target), 44U + 2205U);
}

TEST_F(WaveCommands, RecordTakesThreeSecondsUnlessAskedOtherwise) {
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
  EXPECT_THAT(missing.err, HasSubstr("none.wav: there is no such file"));
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
  const auto answer = RunJson({"--microphone", sample, "wave", "record", Path("none/new.wav")}, 1);
  EXPECT_EQ(answer["code"], 1);
  EXPECT_EQ(answer["bytes"], 0);
}

TEST_F(WaveCommands, RecordReplacesAnEarlierFileOnlyByAWholeRecording) {
  const std::string sample = std::string(VOXTREL_SAMPLES_DIR) + "/anna_1.wav";
  const std::string target = Path("old.wav");
  std::ofstream(target) << "an earlier recording";
  std::ofstream(Path("text.wav")) << std::string(50, 'x');
  EXPECT_EQ(RunJson({"--microphone", Path("text.wav"), "wave", "record", target}, 1)["code"], 2);
  EXPECT_EQ(Read(target), "an earlier recording");
  EXPECT_EQ(RunJson({"--microphone", sample, "wave", "record", target, "--milliseconds", "100"},
                    0)["code"],
            0);
  EXPECT_EQ(std::filesystem::file_size(target), 44U + 2205U);
}

TEST_F(WaveCommands, RecordSaysWhyThereIsNoFile) {
  const std::string sample = std::string(VOXTREL_SAMPLES_DIR) + "/anna_1.wav";
  std::filesystem::create_directory(Path("folder"));
  std::ofstream(Path("protected.wav")) << "kept";
  std::filesystem::permissions(Path("protected.wav"), std::filesystem::perms::owner_read);
  for (const auto& [name, reason] : {std::pair{"none/new.wav", "no such folder"},
                                     {"folder", "is no file"},
                                     {"protected.wav", "is protected"}}) {
    const auto run = Run({"--microphone", sample, "wave", "record", Path(name)});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("File :" + Path(name) + " couldn't be creat"));
    EXPECT_THAT(run.err, HasSubstr("was not recorded: "));
    EXPECT_THAT(run.err, HasSubstr(reason));
  }
  EXPECT_EQ(Read(Path("protected.wav")), "kept");
}

TEST_F(WaveCommands, RecordOnAFullDiskSaysSoAndKeepsTheEarlierFile) {
  const std::string sample = std::string(VOXTREL_SAMPLES_DIR) + "/anna_1.wav";
  const std::string target = Path("old.wav");
  std::ofstream(target) << "an earlier recording";
  const auto run =
      RunOnFullDisk(1, {"--microphone", sample, "wave", "record", target, "--milliseconds", "100"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr(target + " was not recorded: the disk is full\n"));
  EXPECT_EQ(Read(target), "an earlier recording");
}

TEST_F(WaveCommands, PlayIntoAWaveFileInsteadOfTheLoudspeaker) {
  const std::string recording = MakeShortRecording();
  const std::string heard = Path("heard.wav");
  std::ofstream(heard) << "what was heard before";
  EXPECT_EQ(RunJson({"--speaker", heard, "wave", "play", recording}, 0),
            (nlohmann::json{{"code", 0}}));
  std::string expected = Read(recording);
  ASSERT_EQ(expected.size(), 44U + 2205U);
  // The last byte is half a sample; and the usual length stands after "RIFF".
  expected.pop_back();
  expected.replace(4, 4, std::string("\xC0\x08\0\0", 4));
  expected.replace(40, 4, std::string("\x9C\x08\0\0", 4));
  EXPECT_EQ(Read(heard), expected);
}

TEST_F(WaveCommands, PlaySaysWhatItPlayed) {
  const std::string recording = MakeShortRecording();
  const auto run = Run({"--speaker", Path("heard.wav"), "wave", "play", recording});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(run.out, "Played " + recording + "\n");
  EXPECT_EQ(run.err, "");
}

TEST_F(WaveCommands, PlaySaysWhatIsWrongWithTheFile) {
  const std::string good = Read(MakeShortRecording());
  const auto with = [&good](std::size_t at, const std::string& bytes) {
    return std::string(good).replace(at, bytes.size(), bytes);
  };
  ExpectPlayFails("RIFF", 3, "44 bytes");
  ExpectPlayFails(with(0, "RIFX"), 4, "RIFF");
  ExpectPlayFails(with(8, "AVI "), 5, "WAVE");
  ExpectPlayFails(with(20, "\x07"), 6, "not PCM");
  ExpectPlayFails(with(36, "dada"), 7, "no samples that can be played");
  ExpectPlayFails(with(40, std::string(4, '\0')), 101, "no samples");
}

TEST_F(WaveCommands, PlayOfAMissingFileSaysSo) {
  EXPECT_EQ(RunJson({"wave", "play", Path("missing.wav")}, 1)["code"], 1);
  EXPECT_THAT(Run({"wave", "play", Path("missing.wav")}).err,
              HasSubstr("missing.wav was not played: there is no such file (code 1)"));
}

TEST_F(WaveCommands, PlayWithoutALoudspeakerSaysSo) {
  const std::string recording = MakeShortRecording();
  EXPECT_EQ(RunJson({"wave", "play", recording}, 1)["code"], 8);
  EXPECT_THAT(Run({"wave", "play", recording}).err, HasSubstr("there is no sound server"));
}

TEST_F(WaveCommands, PlayIntoAFileThatCannotBeMadeSaysSo) {
  const std::string recording = MakeShortRecording();
  const auto run = Run({"--speaker", Path("none/heard.wav"), "wave", "play", recording});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("the speaker file could not be made"));
  std::filesystem::create_directory(Path("folder"));
  EXPECT_EQ(RunJson({"--speaker", Path("folder"), "wave", "play", recording}, 1)["code"], 8);
}

TEST_F(WaveCommands, CheckSaysWhereTheSamplesAre) {
  auto answer = RunJson({"wave", "check", std::string(VOXTREL_SAMPLES_DIR) + "/anna_1.wav"}, 0);
  answer.erase("quality");  // See quality_commands_test.cpp.
  EXPECT_EQ(answer, (nlohmann::json{{"code", 0}, {"dataOffset", 44}, {"dataBytes", 66150}}));
}

TEST_F(WaveCommands, CheckSaysTheCodeOfAFileThatIsNone) {
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
  EXPECT_EQ(Run({"wave", "play"}).exitCode, 2);
  EXPECT_EQ(Run({"wave", "record", Path("a.wav"), "--milliseconds", "0"}).exitCode, 2);
  EXPECT_EQ(Run({"wave", "record", Path("a.wav"), "--milliseconds", "x"}).exitCode, 2);
  EXPECT_EQ(Run({"wave", "check", "a", "b"}).exitCode, 2);
  EXPECT_EQ(Run({"unknown"}).exitCode, 2);
}

TEST_F(WaveCommands, HelpShowsExamplesAndVersionANumber) {
  const auto help = Run({"--help"});
  EXPECT_EQ(help.exitCode, 0);
  EXPECT_THAT(help.out, HasSubstr("voxtrel wave record ann.wav"));
  EXPECT_THAT(help.out, HasSubstr("voxtrel wave play ann.wav"));
  EXPECT_THAT(help.out, HasSubstr("--speaker FILE"));
  const auto version = Run({"--version"});
  EXPECT_EQ(version.exitCode, 0);
  EXPECT_THAT(version.out, testing::StartsWith("voxtrel "));
}

}  // namespace
