#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "gtest/gtest.h"
#include "tests/support/signals.h"
#include "tests/voicemath/class_twin.h"
#include "tests/voicemath/signal_catalogue.h"

namespace voicemath {
namespace {

using support::Bytes;

bool IsTrimmed(const twins::Processed& processed, const Bytes& before) {
  return processed.result == 0 && processed.after.size() < before.size();
}

std::vector<std::filesystem::path> FindSamples() {
  std::vector<std::filesystem::path> paths;
  for (const auto& entry : std::filesystem::directory_iterator(VOXTREL_SAMPLES_DIR)) {
    if (entry.path().extension() == ".wav") {
      paths.push_back(entry.path());
    }
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

Bytes ReadFile(const std::filesystem::path& path) {
  std::ifstream stream(path, std::ios::binary);
  Bytes bytes(static_cast<std::size_t>(std::filesystem::file_size(path)));
  for (std::byte& byte : bytes) {
    byte = static_cast<std::byte>(stream.get());
  }
  EXPECT_TRUE(stream.good()) << path;
  return bytes;
}

TEST(CVoiceMathematics, EqualsItsTwinOnEverySampleRecording) {
  ClassAndTwin both;
  const std::vector<std::filesystem::path> samples = FindSamples();
  EXPECT_EQ(samples.size(), 24U);
  for (const std::filesystem::path& path : samples) {
    const Bytes file = ReadFile(path);
    EXPECT_TRUE(IsTrimmed(both.ExpectSame(Task::kLearn, 0, file, path.filename().string()), file))
        << path;
    both.ExpectSame(Task::kProcess, 0, file, path.filename().string());
  }
}

TEST(CVoiceMathematics, EqualsItsTwinOnEveryKindOfRecording) {
  ClassAndTwin both;
  const std::vector<NamedSignal> catalogue = CatalogueOfRecordings();
  int trimmed = 0;
  // Every other one: all of them have been through the functions below the class.
  for (std::size_t i = 0; i < catalogue.size(); i += 2) {
    // Short ones wrap their frame count, and have a test of their own.
    if (catalogue[i].samples.size() >= 512) {
      const Bytes file = support::WaveFile(catalogue[i].samples);
      const auto learned = both.ExpectSame(Task::kLearn, 0, file, catalogue[i].name);
      trimmed += IsTrimmed(learned, file) ? 1 : 0;
    }
  }
  EXPECT_GT(trimmed, 20);
}

TEST(CVoiceMathematics, EqualsItsTwinIfASpokenPartIsLearnedAgainAndAgain) {
  ClassAndTwin both;
  Bytes file = support::WaveFile(
      support::Mixed(support::Noise(33075, 70, 1), 9000, support::SpeechLike(14000, 9000.0, 2)));
  for (int round = 0; round < 4; ++round) {
    file = both.ExpectSame(Task::kLearn, round, file, "round " + std::to_string(round)).after;
  }
}

TEST(CVoiceMathematics, EqualsItsTwinOnSegmentsAroundWholeFramesAndBuffers) {
  ClassAndTwin both;
  for (const std::size_t samples : {512U, 513U, 1023U, 1024U, 1025U, 1535U, 1536U, 1537U, 2047U,
                                    2048U, 2049U, 3000U, 4095U, 4096U, 4097U}) {
    both.ExpectSame(Task::kProcess, 0, support::WaveFile(support::Noise(samples, 9000, 4)),
                    std::to_string(samples));
  }
}

TEST(CVoiceMathematics, EqualsItsTwinOnMinutesOfSoundWhoseEndsWrap) {
  ClassAndTwin both;
  // Block 32,768 begins at sample 1,802,240.
  for (const std::size_t at : {1795000U, 1799800U}) {
    const Bytes file = support::WaveFile(
        support::Mixed(support::Constant(1830000, 0), at, support::Tone(5000, 70.0, 9000.0)));
    both.ExpectSame(Task::kLearn, 0, file, "burst at " + std::to_string(at));
  }
}

}  // namespace
}  // namespace voicemath
