#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/host/cli/tags_fixture.h"

namespace {

using testing::HasSubstr;

class DialRecognition : public TagsFixture {
 protected:
  [[nodiscard]] static std::string Sample(const std::string& name) {
    return std::string(VOXTREL_SAMPLES_DIR) + "/" + name + ".wav";
  }
  void PutTwoTags() const {
    PutTag("100", "anna_1.wav", m_ann, u"Mobile");
    PutTag("200", "robert_1.wav", m_bob, u"Home");
    PutVersion(u"3");
  }
  /// The takes of four names of the samples as those of one speaker.
  [[nodiscard]] std::string MakeTakes() const {
    std::filesystem::create_directory(Path("takes"));
    for (const std::string name : {"anna", "robert", "sophie", "oliver"}) {
      for (const std::string take : {"1", "2", "3"}) {
        std::filesystem::copy_file(Sample(name + "_" + take),
                                   Path("takes/" + name + "_me_" + take + ".wav"));
      }
    }
    return Path("takes");
  }
};

TEST_F(DialRecognition, EachFileHasALineThatSaysWhoIsMeant) {
  PutTwoTags();
  const auto run = Run({"dial", "--json", "--recognize", Sample("anna_2"), Sample("robert_3")});
  ASSERT_EQ(run.exitCode, 0) << run.err;
  std::istringstream lines(run.out);
  std::vector<nlohmann::ordered_json> heard;
  for (std::string line; std::getline(lines, line);) {
    heard.push_back(nlohmann::ordered_json::parse(line, nullptr, false));
  }
  ASSERT_EQ(heard.size(), 2U);
  EXPECT_EQ(heard[0]["file"], Sample("anna_2"));
  EXPECT_EQ(heard[0]["answer"], "sure");
  ASSERT_EQ(heard[0]["candidates"].size(), 2U);
  const auto& best = heard[0]["candidates"][0];
  EXPECT_EQ(best["contact"], "Lee Ann");
  EXPECT_EQ(best["number"], "5551234");
  EXPECT_EQ(best["kind"], "Mobile");
  EXPECT_EQ(best["tag"], "100");
  EXPECT_LT(best["distance"], heard[0]["candidates"][1]["distance"]);
  EXPECT_GT(best["score"], heard[0]["candidates"][1]["score"]);
  EXPECT_EQ(heard[1]["candidates"][0]["contact"], "Ray Bob");
}

TEST_F(DialRecognition, AFileThatCannotBeReadIsNamedAndTheOthersAreHeard) {
  PutTwoTags();
  std::ofstream(Path("text.wav")) << "no sound";
  const auto run =
      Run({"dial", "--recognize", Path("missing.wav"), Path("text.wav"), Sample("anna_2")});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("missing.wav: there is no such file"));
  EXPECT_THAT(run.err, HasSubstr("text.wav: it is not a wave file"));
  EXPECT_THAT(run.out, HasSubstr("anna_2.wav: sure"));
  EXPECT_THAT(run.out, HasSubstr("Lee Ann  5551234  Mobile"));
}

TEST_F(DialRecognition, WithoutTagsItSaysSo) {
  const auto run = Run({"dial", "--json", "--recognize", Sample("anna_1")});
  EXPECT_EQ(run.exitCode, 1);
  ExpectOnlyAnError(run);
  EXPECT_THAT(run.err, HasSubstr("there are no voice tags"));
}

TEST_F(DialRecognition, TagsOfAnotherMathematicsAreNotUsedAndItSaysWhatHelps) {
  PutTwoTags();
  PutVersion(u"2");
  const auto run = Run({"dial", "--recognize", Sample("anna_1")});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("`voxtrel reinit`"));
}

TEST_F(DialRecognition, AnEvaluationHasTheFiguresOfEachSpeakerAndOfAll) {
  const auto table = RunJson({"dial", "--evaluate", MakeTakes()}, 0);
  EXPECT_EQ(table["takes"], 1);
  ASSERT_EQ(table["speakers"].size(), 1U);
  const auto& me = table["speakers"][0];
  EXPECT_EQ(me["speaker"], "me");
  EXPECT_EQ(me["asked"], 12);
  EXPECT_EQ(me["forced"]["rate"], 1.0);
  EXPECT_LT(me["forced"]["low"], 1.0);
  EXPECT_EQ(me["forced"]["high"], 1.0);
  for (const char* figure : {"forced", "sure", "wrong", "unknownSure"}) {
    EXPECT_EQ(table["all"][figure], me[figure]) << figure;
  }
}

TEST_F(DialRecognition, AnEvaluationNamesTheFilesThatItCannotUse) {
  const std::string takes = MakeTakes();
  std::ofstream(takes + "/anna_me_9.wav") << "no sound";
  std::ofstream(takes + "/anna.wav") << "no name";
  std::filesystem::copy_file(takes + "/anna_me_1.wav", takes + "/anna_me_01.WAV");
  const auto run = Run({"dial", "--evaluate", takes, "--takes", "2"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_THAT(run.err, HasSubstr("anna_me_9.wav: not used: it is not a wave file"));
  EXPECT_THAT(run.err, HasSubstr("anna.wav: not used: it is not called"));
  EXPECT_THAT(run.err,
              HasSubstr("anna_me_1.wav: not used: there is another take with this number"));
  EXPECT_THAT(run.out, HasSubstr("2 takes are taught"));
}

TEST_F(DialRecognition, AnEvaluationOfNothingFails) {
  std::filesystem::create_directory(Path("empty"));
  EXPECT_THAT(Run({"dial", "--evaluate", Path("empty")}).err, HasSubstr("has no recordings"));
  EXPECT_EQ(Run({"dial", "--evaluate", Path("missing")}).exitCode, 1);
  const auto run = Run({"dial", "--evaluate", MakeTakes(), "--takes", "3"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("no label has more than 3 takes"));
}

}  // namespace
