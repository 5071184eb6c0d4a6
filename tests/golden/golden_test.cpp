// What learning makes of the sample recordings, held byte for byte against kept files. Runs with
// every compiler and on every machine that the system is built for.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "backends/headless/headless_ui.h"
#include "tests/machine/memory_file_system.h"
#include "voicemath/template_file.h"
#include "voicemath/voice_mathematics.h"

namespace {

using Bytes = std::vector<std::byte>;

const std::filesystem::path kSource = VOXTREL_SOURCE_DIR;
const std::filesystem::path kSamples = kSource / "samples";
const std::filesystem::path kGolden = kSource / "tests" / "golden";

constexpr std::u16string_view kWavePath = u"\\tag.wav";
constexpr std::u16string_view kTemplatePath = u"\\tag.st";

Bytes ReadWhole(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  EXPECT_TRUE(file.good()) << path;
  const std::string content{std::istreambuf_iterator<char>(file), {}};
  const auto bytes = std::as_bytes(std::span(content));
  return {bytes.begin(), bytes.end()};
}

testing::AssertionResult SameBytes(const Bytes& expected, const Bytes& actual) {
  const auto [at, other] = std::ranges::mismatch(expected, actual);
  if (at == expected.end() && other == actual.end()) {
    return testing::AssertionSuccess();
  }
  return testing::AssertionFailure()
         << expected.size() << " bytes expected, " << actual.size()
         << " there; first difference at byte " << std::distance(expected.begin(), at);
}

std::set<std::string> StemsIn(const std::filesystem::path& folder, const std::string& extension) {
  std::set<std::string> stems;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() == extension) {
      stems.insert(entry.path().stem().string());
    }
  }
  return stems;
}

/// One sample recording, by the name that is spoken and the number of the rendition.
class GoldenFiles : public testing::TestWithParam<std::tuple<const char*, int>> {
 protected:
  [[nodiscard]] static std::string Stem() {
    const auto [name, rendition] = GetParam();
    return std::string(name) + "_" + std::to_string(rendition);
  }
  [[nodiscard]] static Bytes Sample() { return ReadWhole(kSamples / (Stem() + ".wav")); }
  [[nodiscard]] static Bytes Trimmed() { return ReadWhole(kGolden / (Stem() + ".wav")); }
  [[nodiscard]] static Bytes Template() { return ReadWhole(kGolden / (Stem() + ".st")); }

  void Put(const Bytes& recording) {
    ASSERT_TRUE(m_files.PutFile(kWavePath, recording));
    m_mathematics.m_wavePath = kWavePath;
  }
  [[nodiscard]] Bytes Recording() const { return m_files.GetFile(kWavePath).value_or(Bytes{}); }
  [[nodiscard]] Bytes Stored() {
    EXPECT_TRUE(voicemath::WriteTemplateFile(m_files, kTemplatePath, m_mathematics));
    return m_files.GetFile(kTemplatePath).value_or(Bytes{});
  }

  machine::MemoryFileSystem m_files;
  headless::HeadlessUi m_ui;
  voicemath::CVoiceMathematics m_mathematics{m_files, m_ui};
};

TEST_P(GoldenFiles, LearningTrimsTheSampleToTheKeptRecording) {
  Put(Sample());
  ASSERT_EQ(m_mathematics.LearnFile(0), voicemath::kLearned);
  EXPECT_TRUE(SameBytes(Trimmed(), Recording()));
  EXPECT_LT(Recording().size(), Sample().size()) << "A sample has silence to cut off.";
}

TEST_P(GoldenFiles, LearningTheSampleStoresTheKeptTemplate) {
  Put(Sample());
  ASSERT_EQ(m_mathematics.LearnFile(0), voicemath::kLearned);
  EXPECT_TRUE(SameBytes(Template(), Stored()));
}

TEST_P(GoldenFiles, ProcessingTheKeptRecordingStoresTheKeptTemplate) {
  Put(Trimmed());
  ASSERT_EQ(m_mathematics.ProcessFile(0), voicemath::kLearned);
  EXPECT_TRUE(SameBytes(Template(), Stored()));
  EXPECT_TRUE(SameBytes(Trimmed(), Recording()));
}

INSTANTIATE_TEST_SUITE_P(Samples, GoldenFiles,
                         testing::Combine(testing::Values("anna", "robert", "elizabeth", "jackson",
                                                          "oliver", "sophie", "timothy",
                                                          "hernandez"),
                                          testing::Range(1, 4)),
                         [](const auto& sample) {
                           return std::string(std::get<0>(sample.param)) +
                                  std::to_string(std::get<1>(sample.param));
                         });

TEST(GoldenFolder, KeepsARecordingAndATemplateOfEverySample) {
  const auto samples = StemsIn(kSamples, ".wav");
  EXPECT_EQ(samples.size(), 24U);
  EXPECT_EQ(StemsIn(kGolden, ".wav"), samples);
  EXPECT_EQ(StemsIn(kGolden, ".st"), samples);
}

}  // namespace
