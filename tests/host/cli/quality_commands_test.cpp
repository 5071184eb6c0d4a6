#include <algorithm>
#include <bit>
#include <filesystem>
#include <fstream>

#include "tests/host/cli/tags_fixture.h"
#include "tests/support/riff.h"
#include "tests/support/signals.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;
using testing::SizeIs;

class QualityCommands : public TagsFixture {
 protected:
  static void Write(const fs::path& path, const support::Bytes& bytes) {
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
  }
  /// The sample with every value divided by 200, which leaves a peak below -50 dB.
  static support::Bytes SoftSample() {
    const std::string file = Content(fs::path(VOXTREL_SAMPLES_DIR) / "anna_1.wav");
    support::Samples samples;
    for (std::size_t at = 44; at + 1 < file.size(); at += 2) {
      const auto low = static_cast<unsigned char>(file[at]);
      const auto high = static_cast<unsigned char>(file[at + 1]);
      samples.push_back(
          static_cast<std::int16_t>(static_cast<std::int16_t>(high << 8U | low) / 200));
    }
    return support::WaveFile(samples);
  }
  [[nodiscard]] static json VerdictsOf(const json& object) { return object["quality"]["verdicts"]; }
};

TEST_F(QualityCommands, WaveCheckJudgesARecordingThatIsNotTrimmedYet) {
  const std::string sample = std::string(VOXTREL_SAMPLES_DIR) + "/anna_1.wav";
  const json good = RunJson({"wave", "check", sample}, 0);
  EXPECT_EQ(VerdictsOf(good), json::array());
  EXPECT_EQ(good["quality"]["tooAlike"], json::array());
  EXPECT_NEAR(good["quality"]["peakDb"].get<double>(), -6.0, 0.1);
  EXPECT_GT(good["quality"]["snrDb"].get<double>(), 30);
  EXPECT_EQ(good["dataBytes"], 66150);

  Write(Path("soft.wav"), SoftSample());
  const json soft = RunJson({"wave", "check", Path("soft.wav")}, 0);
  EXPECT_EQ(VerdictsOf(soft), json::array({"soft"}));
  EXPECT_NEAR(soft["quality"]["peakDb"].get<double>(), -52.0, 0.5);
}

TEST_F(QualityCommands, WaveCheckJudgesWhateverTheCodeIs) {
  support::Bytes file = support::WaveFile(support::Noise(33075, 3000, 1));
  file[24] = std::byte{0x44};  // 44,100 samples a second.
  file[25] = std::byte{0xAC};
  Write(Path("rate.wav"), file);
  EXPECT_THAT(VerdictsOf(RunJson({"wave", "check", Path("rate.wav")}, 0)), Contains("rate"));
  file.resize(9000);
  Write(Path("torn.wav"), file);
  EXPECT_THAT(VerdictsOf(RunJson({"wave", "check", Path("torn.wav")}, 1)),
              AllOf(Contains("interrupted"), Contains("rate"), Contains("no-speech")));
  Write(Path("compressed.wav"), support::RiffWave({.formatTag = 7,
                                                   .channels = 1,
                                                   .samplesPerSecond = 8000,
                                                   .averageBytesPerSecond = 8000,
                                                   .blockAlign = 1,
                                                   .bitsPerSample = 8},
                                                  support::Bytes(9000)));
  const json compressed = RunJson({"wave", "check", Path("compressed.wav")}, 1);
  EXPECT_EQ(compressed["code"], 4);
  EXPECT_EQ(VerdictsOf(compressed), json::array({"rate"}));
  EXPECT_TRUE(compressed["quality"]["peakDb"].is_null());
  EXPECT_TRUE(RunJson({"wave", "check", Path("none.wav")}, 1)["quality"].is_null());
}

TEST_F(QualityCommands, WaveCheckJudgesTheSoundOfAFileThatIsRefused) {
  const std::string sample = Content(fs::path(VOXTREL_SAMPLES_DIR) / "anna_1.wav");
  const auto bytes = std::as_bytes(std::span(sample)).subspan(44);
  const platform::WaveFormat mono{.formatTag = 1,
                                  .channels = 1,
                                  .samplesPerSecond = 11025,
                                  .averageBytesPerSecond = 22050,
                                  .blockAlign = 2,
                                  .bitsPerSample = 16};
  // As many programs write it: a list of remarks before the samples.
  Write(Path("list.wav"), support::RiffWave({support::Chunk("fmt ", support::FormatBody(mono)),
                                             support::Chunk("LIST", support::Bytes(26)),
                                             support::Chunk("data", bytes)}));
  const json list = RunJson({"wave", "check", Path("list.wav")}, 1);
  EXPECT_EQ(list["code"], 7);
  EXPECT_EQ(VerdictsOf(list), json::array());
  EXPECT_NEAR(list["quality"]["peakDb"].get<double>(), -6.0, 0.1);

  support::Bytes floats;
  for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
    const auto value =
        static_cast<std::int16_t>(platform::LoadLittleEndian16(bytes.subspan(at).first<2>()));
    for (int channel = 0; channel < 2; ++channel) {
      support::Append32(floats, std::bit_cast<std::uint32_t>(
                                    std::clamp(static_cast<float>(value) / 3000, -1.0F, 1.0F)));
    }
  }
  Write(Path("floats.wav"), support::RiffWave({.formatTag = 3,
                                               .channels = 2,
                                               .samplesPerSecond = 11025,
                                               .averageBytesPerSecond = 88200,
                                               .blockAlign = 8,
                                               .bitsPerSample = 32},
                                              floats));
  const json loud = RunJson({"wave", "check", Path("floats.wav")}, 1);
  EXPECT_EQ(VerdictsOf(loud), json::array({"rate", "clipped"}));
  EXPECT_NEAR(loud["quality"]["peakDb"].get<double>(), 0, 0.1);
  EXPECT_GT(loud["quality"]["snrDb"].get<double>(), 30);
}

TEST_F(QualityCommands, WaveCheckSaysEachVerdictInOneSentence) {
  Write(Path("soft.wav"), SoftSample());
  const auto run = Run({"wave", "check", Path("soft.wav")});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_THAT(run.out, HasSubstr("soft.wav: it is soft: its peak is -52."));
}

TEST_F(QualityCommands, TagsListHasTheQualityOfEachTag) {
  PutThreeTags();
  const json list = List();
  ASSERT_EQ(list.size(), 3U);
  EXPECT_EQ(VerdictsOf(list[0]), json::array({"too-alike"})) << "The same name for two numbers.";
  ASSERT_THAT(list[0]["quality"]["tooAlike"], SizeIs(1));
  EXPECT_EQ(list[0]["quality"]["tooAlike"][0]["tag"], "200");
  EXPECT_NEAR(list[0]["quality"]["tooAlike"][0]["distance"].get<double>(), 0.13, 0.02);
  EXPECT_EQ(list[1]["quality"]["tooAlike"][0]["tag"], "100");
  EXPECT_EQ(VerdictsOf(list[2]), json::array());
}

TEST_F(QualityCommands, ATagWithoutARecordingIsNotJudged) {
  PutThreeTags();
  fs::remove(Wave("300"));
  EXPECT_TRUE(List()[2]["quality"].is_null());
}

TEST_F(QualityCommands, ATagThatTheDialerDoesNotKnowIsNotCalledGood) {
  PutThreeTags();
  fs::remove(Template("300"));
  EXPECT_TRUE(List()[2]["quality"].is_null());
  Write(Template("300"), support::Bytes(20));
  EXPECT_TRUE(List()[2]["quality"].is_null()) << "it has no frame";
}

TEST_F(QualityCommands, ATemplateThatCannotBeReadIsReportedAndTheListIsWhole) {
  PutThreeTags();
  fs::remove(Template("100"));
  fs::create_directory(Template("100"));
  const auto run = Run({"--json", "tags", "list"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("voice tag 100 cannot be judged"));
  EXPECT_THAT(json::parse(run.out, nullptr, false), SizeIs(3));
}

TEST_F(QualityCommands, CheckGivesAdviceAndNoFault) {
  PutThreeTags();
  const json result = RunJson({"check"}, 0);
  EXPECT_EQ(result["findings"], json::array());
  ASSERT_THAT(result["advice"], SizeIs(2));
  EXPECT_EQ(result["advice"][0]["tag"], "100");
  EXPECT_EQ(VerdictsOf(result["advice"][0]), json::array({"too-alike"}));
  const auto run = Run({"check"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(run.out, AllOf(HasSubstr("Nothing is wrong with the voice tags."),
                             HasSubstr("\nAdvice: 100 (Ann Lee 5551234 M): it sounds like tag 200 "
                                       "(Bob Ray 5550001 H)")));
}

TEST_F(QualityCommands, LearnWarnsAndKeepsTheTag) {
  Write(Path("soft.wav"), SoftSample());
  const std::vector<std::string> learn{
      "--microphone", Path("soft.wav"), "--speaker", Path("heard.wav"),
      "tags",         "learn",          "--contact", "Ann"};
  const auto run = Run(learn);
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(run.out, HasSubstr("Learned: Ann Lee"));
  EXPECT_THAT(run.err, HasSubstr("voxtrel: warning: the recording: it is soft: its peak is -52."));
  auto asJson = learn;
  asJson.emplace_back("--json");
  const json tag = json::parse(Run(asJson).out, nullptr, false);
  EXPECT_EQ(VerdictsOf(tag), json::array({"soft"})) << tag;
  EXPECT_THAT(tag["warnings"], SizeIs(1));
  EXPECT_THAT(List(), SizeIs(2));
}

TEST_F(QualityCommands, LearnSaysNothingOfAGoodRecording) {
  const std::string sample = std::string(VOXTREL_SAMPLES_DIR) + "/robert_1.wav";
  const auto run = Run({"--microphone", sample, "--speaker", Path("heard.wav"), "tags", "learn",
                        "--contact", "Ann", "--json"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.err, "");
  const json tag = json::parse(run.out, nullptr, false);
  EXPECT_EQ(VerdictsOf(tag), json::array());
  EXPECT_FALSE(tag.contains("warnings"));
}

TEST_F(QualityCommands, LearnNamesTheTagThatTheNewOneSoundsLike) {
  PutThreeTags();
  const std::string sample = std::string(VOXTREL_SAMPLES_DIR) + "/robert_2.wav";
  const auto run = Run({"--microphone", sample, "--speaker", Path("heard.wav"), "tags", "learn",
                        "--contact", "Ann"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_THAT(run.err, HasSubstr("it sounds like tag 300 (Bob Ray 5550001 H)"));
}

}  // namespace
