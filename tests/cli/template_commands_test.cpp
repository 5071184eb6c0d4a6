#include <algorithm>
#include <filesystem>
#include <fstream>

#include "tests/cli/command_fixture.h"

namespace {

using testing::HasSubstr;

class TemplateCommands : public CommandFixture {};

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

TEST_F(TemplateCommands, TheSummaryTellsWhereTheSpeechBeginsAndEnds) {
  const std::string wave = CopySample("anna_1.wav");
  EXPECT_THAT(Run({"template", "process", wave, Path("a.st")}).out,
              HasSubstr("Speech    0.00 s to 3.00 s"));
  // 11,081 samples: the last one ends just behind half a hundredth of a second.
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
  EXPECT_EQ(show(std::string("\x05\0\0\0\x01\0"
                             "\xCD\xCC\xCC\x3D\xFF\xFF\x7F\x7F\0\0\0\x40"
                             "\0\0\xC0\x7F\x01\0\0\0",
                             26)),
            "{\"elementCount\":5,\"frames\":1,\"values\":"
            "[0.100000001,3.40282347e+38,2.0,null,1.40129846e-45]}\n");
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

TEST_F(TemplateCommands, AnEmptyNameIsAFileThatCannotBeOpened) {
  EXPECT_EQ(RunJson({"template", "learn", "", Path("a.st")}, 1)["result"], 2);
  const auto run = Run({"template", "show", ""});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.err, "voxtrel: : it cannot be opened\n");
}

TEST_F(TemplateCommands, ShowRefusesATornFile) {
  std::ofstream(Path("torn.st"), std::ios::binary) << std::string("\x05\0\0\0\x01\0abc", 9);
  const auto run = Run({"template", "show", Path("torn.st"), "--json"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.out, "");
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
