#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/host/cli/command_fixture.h"
#include "tests/support/signals.h"

namespace {

using testing::HasSubstr;

class TemplateCommands : public CommandFixture {
 protected:
  [[nodiscard]] std::string WriteWave(const std::string& name,
                                      const support::Samples& samples) const {
    const support::Bytes bytes = support::WaveFile(samples);
    std::string path = Path(name);
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    return path;
  }

  [[nodiscard]] static std::string Read(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  /// Learns `wave` and expects `count` warnings, the last of which says `what`, in JSON and in one
  /// line each on standard error.
  void ExpectWarning(const std::string& wave, const std::string& what,
                     std::size_t count = 1) const {
    const auto run = Run({"--json", "template", "learn", wave, Path("a.st")});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    const auto warnings = nlohmann::json::parse(run.out)["warnings"];
    ASSERT_EQ(warnings.size(), count) << warnings;
    EXPECT_THAT(warnings.back().get<std::string>(), HasSubstr(what));
    EXPECT_EQ(static_cast<std::size_t>(std::ranges::count(run.err, '\n')), count);
    EXPECT_THAT(run.err, HasSubstr("voxtrel: warning: " + wave + ": " +
                                   warnings.back().get<std::string>() + "\n"));
  }
};

TEST_F(TemplateCommands, LearnTrimsTheRecordingAndWritesTheTemplate) {
  const std::string wave = CopySample("anna_1.wav");
  const auto answer = RunJson({"template", "learn", wave, Path("anna.st")}, 0);
  EXPECT_EQ(answer["result"], 0);
  const std::size_t first = answer["segment"][0];
  const std::size_t last = answer["segment"][1];
  const std::size_t samples = last - first + 1;
  EXPECT_LT(samples, 33075U);
  EXPECT_EQ(std::filesystem::file_size(wave), 44 + 2 * samples);
  const std::size_t frames = answer["frames"];
  EXPECT_EQ(frames, samples / 512 - 1);
  EXPECT_EQ(std::filesystem::file_size(Path("anna.st")), 6 + 20 * frames);
  EXPECT_FLOAT_EQ(answer["seconds"], static_cast<float>((frames + 1) * 512) / 11025.0F);
}

TEST_F(TemplateCommands, ProcessTakesTheWholeRecordingAndLeavesIt) {
  const std::string wave = CopySample("anna_1.wav");
  const auto answer = RunJson({"template", "process", wave, Path("anna.st")}, 0);
  EXPECT_EQ(answer["segment"], (nlohmann::json{0, 33074}));
  EXPECT_EQ(answer["frames"], 63);
  EXPECT_EQ(std::filesystem::file_size(wave), 66194U);
}

TEST_F(TemplateCommands, LearnShowsASummaryAndAPicture) {
  const auto run = Run({"template", "learn", CopySample("anna_1.wav"), Path("anna.st")});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(run.out, HasSubstr("Speech"));
  EXPECT_THAT(run.out, HasSubstr("1981 to 2466 Hz"));
  EXPECT_THAT(run.out, HasSubstr(" 108 to  484 Hz"));
  EXPECT_THAT(run.out, HasSubstr("█"));
}

TEST_F(TemplateCommands, TheSummarySaysWhereTheSpeechBeginsAndEnds) {
  const std::string wave = CopySample("anna_1.wav");
  EXPECT_THAT(Run({"template", "process", wave, Path("a.st")}).out,
              HasSubstr("Speech    0.00 s to 3.00 s"));
  // 11,081 samples: the last one ends just after half a hundredth of a second.
  std::fstream(wave, std::ios::binary | std::ios::in | std::ios::out)
      .seekp(40)
      .write("\x92\x56\0\0", 4);
  EXPECT_THAT(Run({"template", "process", wave, Path("a.st")}).out,
              HasSubstr("Speech    0.00 s to 1.01 s"));
}

TEST_F(TemplateCommands, AResultThatIsNotZeroPrintsTheJsonAllTheSame) {
  std::ofstream(Path("text.wav")) << std::string(50, 'x');
  for (const std::string wave : {"text.wav", "missing.wav"}) {
    for (const std::string command : {"learn", "process"}) {
      const auto answer = RunJson({"template", command, Path(wave), Path("a.st")}, 1);
      EXPECT_EQ(answer["result"], 2);
      EXPECT_EQ(answer["frames"], 0);
      EXPECT_FALSE(std::filesystem::exists(Path("a.st")));
    }
  }
}

TEST_F(TemplateCommands, ATemplateThatCannotBeWrittenIsAFailure) {
  const auto run = Run({"template", "process", CopySample("anna_1.wav"), Path("none/a.st")});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("cannot be made"));
}

TEST_F(TemplateCommands, LearnCutsNothingIfTheTemplateCannotBeMade) {
  const std::string wave = CopySample("anna_1.wav");
  std::filesystem::create_directory(Path("folder"));
  std::ofstream(Path("protected.st")) << "kept";
  std::filesystem::permissions(Path("protected.st"), std::filesystem::perms::owner_read);
  std::filesystem::create_symlink(Path("elsewhere.st"), Path("link.st"));
  std::filesystem::create_symlink("/dev/full", Path("full.st"));
  for (const std::string name :
       {"none/a.st", "folder", "protected.st", "link.st", "full.st", "folder/"}) {
    const auto run = Run({"template", "learn", wave, Path(name)});
    EXPECT_EQ(run.exitCode, 1) << name;
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, HasSubstr(Path(name) + ": it cannot be made: "));
    EXPECT_THAT(run.err, HasSubstr(wave + " was left as it is"));
    EXPECT_EQ(std::filesystem::file_size(wave), 66194U) << name;
  }
  EXPECT_EQ(RunJson({"template", "learn", wave, Path("none/a.st")}, 1)["result"], 2);
  EXPECT_FALSE(std::filesystem::exists(Path("elsewhere.st")));
}

TEST_F(TemplateCommands, LearnCutsNothingOnADiskThatHasNoRoomForTheTemplate) {
  // Its template has more than 512 bytes.
  const std::string wave = WriteWave(
      "name.wav",
      support::Mixed(support::Noise(33075, 20, 1), 8000, support::SpeechLike(14000, 9000, 2)));
  const auto run = RunOnFullDisk(1, {"template", "learn", wave, Path("a.st")});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("a.st: it cannot be made: the disk is full"));
  EXPECT_EQ(std::filesystem::file_size(wave), 66194U);
  EXPECT_FALSE(std::filesystem::exists(Path("a.st")));
}

TEST_F(TemplateCommands, AFullDiskIsNamed) {
  const std::string wave = CopySample("anna_1.wav");
  EXPECT_THAT(RunOnFullDisk(1, {"template", "process", wave, Path("a.st")}).err,
              HasSubstr("a.st: it cannot be made: the disk is full"));
  EXPECT_THAT(
      RunOnFullDisk(100, {"template", "learn", wave, Path("b.st"), "--keep", Path("uncut.wav")})
          .err,
      HasSubstr("uncut.wav: the original cannot be kept there: the disk is full"));
  EXPECT_FALSE(std::filesystem::exists(Path("uncut.wav")));
  // Room for the template and not for the recording that was cut.
  const auto run = RunOnFullDisk(10, {"template", "learn", wave, Path("b.st")});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr(wave + ": it cannot be read or rewritten: the disk is full"));
  EXPECT_EQ(std::filesystem::file_size(wave), 66194U);
}

TEST_F(TemplateCommands, AnEarlierTemplateIsReplacedAsAWholeAndKeptOnAFullDisk) {
  const std::string wave = CopySample("anna_1.wav");
  const std::string earlier(100'000, 'x');
  std::ofstream(Path("a.st")) << earlier;
  EXPECT_EQ(RunOnFullDisk(1, {"template", "process", wave, Path("a.st")}).exitCode, 1);
  EXPECT_EQ(Read(Path("a.st")), earlier);
  EXPECT_EQ(Run({"template", "process", wave, Path("a.st")}).exitCode, 0);
  EXPECT_EQ(std::filesystem::file_size(Path("a.st")), 6U + 20 * 63U);
}

TEST_F(TemplateCommands, LearnOfLessThanAHopChangesNothingAndFails) {
  const std::string short511 = WriteWave("short.wav", support::Noise(511, 9000, 1));
  for (const std::string command : {"learn", "process"}) {
    const auto answer = RunJson({"template", command, short511, Path("a.st")}, 1);
    EXPECT_EQ(answer["result"], 2);
    EXPECT_EQ(answer["frames"], 0);
    EXPECT_THAT(Run({"template", command, short511, Path("a.st")}).err,
                HasSubstr("fewer than 512 samples"));
    EXPECT_FALSE(std::filesystem::exists(Path("a.st")));
    EXPECT_EQ(std::filesystem::file_size(short511), 44U + 2 * 511U);
  }
}

TEST_F(TemplateCommands, LessThanAFrameGivesAnEmptyTemplateAndAWarning) {
  const std::string wave = WriteWave("short.wav", support::Noise(1023, 9000, 1));
  ExpectWarning(wave, "template is empty");
  EXPECT_EQ(std::filesystem::file_size(Path("a.st")), 6U);
}

TEST_F(TemplateCommands, LearnWarnsOfWhatIsNoSpokenName) {
  ExpectWarning(WriteWave("silent.wav", support::Constant(33075, 0)), "is silent");
  ExpectWarning(WriteWave("long.wav", support::Noise(661'501, 9000, 1)), "longer than 60 s");
  const std::string other = CopySample("anna_1.wav");
  std::fstream(other, std::ios::binary | std::ios::in | std::ios::out)
      .seekp(24)
      .write("\x44\xAC\0\0", 4);
  ExpectWarning(other, "44100 samples a second");
  auto late = support::Mixed(support::Noise(1'850'000, 20, 1), 1'810'000,
                             support::SpeechLike(6000, 9000, 2));
  ExpectWarning(WriteWave("late.wav", late), "after 163 s", 2);
}

TEST_F(TemplateCommands, LearnOfASpokenNameWarnsOfNothing) {
  const auto answer = RunJson({"template", "learn", CopySample("anna_1.wav"), Path("a.st")}, 0);
  EXPECT_EQ(answer["warnings"], nlohmann::json::array());
}

TEST_F(TemplateCommands, ProcessNamesWarningsOnlyIfThereAreAny) {
  const std::string wave = WriteWave("silent.wav", support::Constant(33075, 0));
  const auto run = Run({"--json", "template", "process", wave, Path("a.st")});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(nlohmann::json::parse(run.out)["warnings"].size(), 1U);
  EXPECT_FALSE(RunJson({"template", "process", CopySample("anna_1.wav"), Path("a.st")}, 0)
                   .contains("warnings"));
}

TEST_F(TemplateCommands, LearnKeepsTheUncutOriginalIfItIsAskedTo) {
  const std::string wave = CopySample("anna_1.wav");
  const std::string original = Read(wave);
  EXPECT_EQ(Run({"template", "learn", wave, Path("a.st"), "--keep", Path("uncut.wav")}).exitCode,
            0);
  EXPECT_EQ(Read(Path("uncut.wav")), original);
  EXPECT_LT(std::filesystem::file_size(wave), 66194U);
}

TEST_F(TemplateCommands, LearnKeepsTheOriginalInNoFileThatIsThere) {
  const std::string wave = CopySample("anna_1.wav");
  std::ofstream(Path("taken.wav")) << "another recording";
  std::filesystem::create_symlink(Path("elsewhere.wav"), Path("link.wav"));
  for (const std::string name : {"taken.wav", "link.wav", "none/uncut.wav"}) {
    const auto run = Run({"template", "learn", wave, Path("a.st"), "--keep", Path(name)});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("the original cannot be kept there: "));
    EXPECT_EQ(std::filesystem::file_size(wave), 66194U) << name;
    EXPECT_FALSE(std::filesystem::exists(Path("a.st")));
  }
  EXPECT_EQ(Read(Path("taken.wav")), "another recording");
  EXPECT_FALSE(std::filesystem::exists(Path("elsewhere.wav")));
}

TEST_F(TemplateCommands, LearnNeitherKeepsTheOriginalInItselfNorInTheTemplate) {
  const std::string wave = CopySample("anna_1.wav");
  for (const std::string keep : {"anna_1.wav", "./a.st"}) {
    EXPECT_EQ(Run({"template", "learn", wave, Path("a.st"), "--keep", Path(keep)}).exitCode, 2);
    EXPECT_EQ(std::filesystem::file_size(wave), 66194U);
  }
}

TEST_F(TemplateCommands, ProcessNeedsNoRightToWriteOnTheRecording) {
  const std::string wave = CopySample("anna_1.wav");
  std::filesystem::permissions(wave, std::filesystem::perms::owner_read);
  EXPECT_EQ(RunJson({"template", "process", wave, Path("a.st")}, 0)["frames"], 63);
  EXPECT_EQ(RunJson({"template", "learn", wave, Path("b.st")}, 1)["result"], 2);
}

TEST_F(TemplateCommands, ValuesThatAreNoNumbersAreNamedAndFail) {
  // Two frames: 0, 1, not a number, 0, 0; 0, 0, 0, minus infinity, 0.
  const std::string zero(4, '\0');
  const std::string one("\0\0\x80\x3F", 4);
  const std::string none("\0\0\xC0\x7F", 4);
  const std::string infinite("\0\0\x80\xFF", 4);
  std::ofstream(Path("a.st"), std::ios::binary)
      << std::string("\x0A\0\0\0\x02\0", 6) << zero << one << none << zero << zero << zero << zero
      << zero << infinite << zero;
  const auto show = Run({"template", "show", Path("a.st")});
  EXPECT_EQ(show.exitCode, 1);
  EXPECT_THAT(show.out, HasSubstr("2 frames"));
  EXPECT_THAT(show.err, HasSubstr("a.st: the value of frame 1, band 3 is no finite number (nan), "
                                  "and so is 1 more"));
  ASSERT_EQ(Run({"template", "process", CopySample("anna_1.wav"), Path("b.st")}).exitCode, 0);
  const auto compare = Run({"template", "compare", Path("b.st"), Path("a.st"), "--json"});
  EXPECT_EQ(compare.exitCode, 1);
  ExpectOnlyAnError(compare);
  EXPECT_THAT(compare.err, HasSubstr("a.st: the value of frame 1, band 3 is no finite number"));
}

TEST_F(TemplateCommands, NegativeValuesAreAWarning) {
  std::ofstream(Path("a.st"), std::ios::binary)
      << std::string("\x05\0\0\0\x01\0", 6) << std::string(16, '\0')
      << std::string("\0\0\x80\xBF", 4);
  for (const std::string command : {"show", "compare"}) {
    const auto run = Run({"template", command, Path("a.st")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.err, HasSubstr("warning: " + Path("a.st") +
                                   ": the value of frame 1, band 5 is negative (-1)\n"));
  }
}

TEST_F(TemplateCommands, ShowPrintsEveryValueWithNineDigits) {
  ASSERT_EQ(Run({"template", "process", CopySample("anna_1.wav"), Path("a.st")}).exitCode, 0);
  const auto answer = RunJson({"template", "show", Path("a.st")}, 0);
  EXPECT_EQ(answer["elementCount"], 315);
  EXPECT_EQ(answer["frames"], 63);
  ASSERT_EQ(answer["values"].size(), 315U);

  std::ifstream file(Path("a.st"), std::ios::binary);
  file.seekg(6);
  for (const auto& value : answer["values"]) {
    float stored = 0.0F;
    file.read(reinterpret_cast<char*>(&stored), sizeof stored);
    EXPECT_EQ(value.get<float>(), stored);
  }
}

TEST_F(TemplateCommands, NoFractionHasMoreThanNineDigits) {
  const std::string wave = CopySample("anna_1.wav");
  EXPECT_EQ(Run({"--json", "template", "process", wave, Path("a.st")}).out,
            "{\"result\":0,\"segment\":[0,33074],\"frames\":63,\"seconds\":2.97215414}\n");

  const auto show = [this](const std::string& bytes) {
    std::ofstream(Path("b.st"), std::ios::binary) << bytes;
    return Run({"template", "show", Path("b.st"), "--json"}).out;
  };
  // 0.1, the largest float, 2, a value that is no number, and 2 to the power of -149.
  EXPECT_EQ(
      show(std::string("\x05\0\0\0\x01\0"
                       "\xCD\xCC\xCC\x3D\xFF\xFF\x7F\x7F\0\0\0\x40"
                       "\0\0\xC0\x7F\x01\0\0\0",
                       26)),
      "{\"elementCount\":5,\"frames\":1,\"values\":"
      "[0.100000001,3.40282347e+38,2.0,null,1.40129846e-45],"
      "\"error\":{\"code\":1,\"message\":" +
          nlohmann::json(Path("b.st") + ": the value of frame 1, band 4 is no finite number (nan)")
              .dump() +
          "}}\n");
  EXPECT_EQ(show(std::string(6, '\0')), "{\"elementCount\":0,\"frames\":0,\"values\":[]}\n");
}

TEST_F(TemplateCommands, ARecordingIsNotOverwrittenByItsTemplate) {
  const std::string wave = CopySample("anna_1.wav");
  std::filesystem::create_hard_link(wave, Path("other_name"));
  for (const std::string st : {"anna_1.wav", "./anna_1.wav", "other_name"}) {
    for (const std::string command : {"learn", "process"}) {
      const auto run = Run({"template", command, wave, Path(st)});
      EXPECT_EQ(run.exitCode, 2);
      EXPECT_THAT(run.err, HasSubstr("would overwrite the recording"));
      EXPECT_EQ(std::filesystem::file_size(wave), 66194U);
    }
  }
}

TEST_F(TemplateCommands, AnEmptyNameIsAFileThatIsNotThere) {
  EXPECT_EQ(RunJson({"template", "learn", "", Path("a.st")}, 1)["result"], 2);
  const auto run = Run({"template", "show", ""});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.err, "voxtrel: : there is no such file\n");
}

TEST_F(TemplateCommands, OneFrameIsNotCalledFrames) {
  std::ofstream(Path("one.st"), std::ios::binary)
      << std::string("\x05\0\0\0\x01\0", 6) << std::string(20, '\0');
  EXPECT_THAT(Run({"template", "show", Path("one.st")}).out, HasSubstr("one.st: 1 frame, "));
  std::ofstream(Path("none.st"), std::ios::binary) << std::string(6, '\0');
  EXPECT_THAT(Run({"template", "show", Path("none.st")}).out, HasSubstr("none.st: 0 frames, "));
}

TEST_F(TemplateCommands, ShowRefusesATornFile) {
  std::ofstream(Path("torn.st"), std::ios::binary) << std::string("\x05\0\0\0\x01\0abc", 9);
  const auto run = Run({"template", "show", Path("torn.st"), "--json"});
  EXPECT_EQ(run.exitCode, 1);
  ExpectOnlyAnError(run);
  EXPECT_THAT(run.err, HasSubstr("torn"));
}

TEST_F(TemplateCommands, ComparePrintsEveryDistanceAndWhatEachTemplateWouldAccept) {
  std::vector<std::string> arguments{"template", "compare"};
  for (const std::string name : {"anna_1", "anna_2", "elizabeth_1"}) {
    const std::string st = Path(name + ".st");
    ASSERT_EQ(Run({"template", "learn", CopySample(name + ".wav"), st}).exitCode, 0);
    arguments.push_back(st);
  }
  const auto answer = RunJson(arguments, 0);
  const auto& distances = answer["distances"];
  ASSERT_EQ(distances.size(), 3U);
  ASSERT_EQ(answer["thresholds"].size(), 3U);
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(distances[i][i], 0.0);
    const float one = distances[i][(i + 1) % 3];
    const float other = distances[i][(i + 2) % 3];
    EXPECT_GT(std::min(one, other), 0.0F);
    const float nearest = std::min({one, other, 2.0F});
    EXPECT_FLOAT_EQ(answer["thresholds"][i], nearest - nearest / 3.0F);
  }
  EXPECT_THAT(Run(arguments).out, HasSubstr("accepts below"));
}

TEST_F(TemplateCommands, CompareOfOneTemplateHasNoNeighbour) {
  ASSERT_EQ(Run({"template", "process", CopySample("anna_1.wav"), Path("a.st")}).exitCode, 0);
  const auto answer = RunJson({"template", "compare", Path("a.st")}, 0);
  EXPECT_EQ(answer, (nlohmann::json{{"distances", {{0.0}}}, {"thresholds", {2.0}}}));
}

TEST_F(TemplateCommands, HelpOfCompareTakesAsManyTemplatesAsTheCommandDoes) {
  EXPECT_THAT(Run({"template", "compare", "--help"}).out,
              HasSubstr("Usage: voxtrel template compare [OPTIONS] st...\n"));
}

TEST_F(TemplateCommands, CompareTakesAHundredTemplates) {
  ASSERT_EQ(Run({"template", "learn", CopySample("anna_1.wav"), Path("a.st")}).exitCode, 0);
  std::vector<std::string> arguments{"template", "compare"};
  arguments.insert(arguments.end(), 100, Path("a.st"));
  const auto answer = RunJson(arguments, 0);
  EXPECT_EQ(answer["distances"].size(), 100U);
  EXPECT_EQ(answer["thresholds"], nlohmann::json(std::vector<double>(100)));
}

TEST_F(TemplateCommands, WrongUsageIsTwo) {
  EXPECT_EQ(Run({"template", "learn", Path("a.wav")}).exitCode, 2);
  EXPECT_EQ(Run({"template", "compare"}).exitCode, 2);
  std::vector<std::string> tooMany{"template", "compare"};
  tooMany.insert(tooMany.end(), 101, Path("a.st"));
  EXPECT_EQ(Run(tooMany).exitCode, 2);
}

}  // namespace
