#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>
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
  Bytes bytes(std::filesystem::file_size(path));
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
    EXPECT_TRUE(IsTrimmed(both.ExpectSameTwice(file, path.filename().string()), file)) << path;
    both.ExpectSame(Task::kProcess, 0, file, path.filename().string());
  }
}

TEST(CVoiceMathematics, EqualsItsTwinOnEveryKindOfRecording) {
  ClassAndTwin both;
  int trimmed = 0;
  for (const NamedSignal& signal : CatalogueOfRecordings()) {
    // Shorter ones wrap their frame count, and have a test of their own.
    if (signal.samples.size() >= 512) {
      const Bytes file = support::WaveFile(signal.samples);
      trimmed += IsTrimmed(both.ExpectSame(Task::kLearn, 0, file, signal.name), file) ? 1 : 0;
    }
  }
  EXPECT_GT(trimmed, 40);
}

TEST(CVoiceMathematics, EqualsItsTwinWhereASpokenPartIsLearnedAgainAndAgain) {
  ClassAndTwin both;
  Bytes file = support::WaveFile(
      support::Mixed(support::Noise(33075, 70, 1), 9000, support::SpeechLike(14000, 9000.0, 2)));
  for (int round = 0; round < 4; ++round) {
    file = both.ExpectSame(Task::kLearn, round, file, "round " + std::to_string(round)).after;
  }
}

TEST(CVoiceMathematics, EqualsItsTwinOnSegmentsAroundWholeFramesAndBuffers) {
  ClassAndTwin both;
  for (std::size_t samples = 512; samples <= 4200; samples += samples % 512 < 2 ? 1 : 169) {
    both.ExpectSame(Task::kProcess, 0, support::WaveFile(support::Noise(samples, 9000, 3)),
                    std::to_string(samples));
  }
  for (const std::size_t samples : {511U, 512U, 513U, 1023U, 1024U, 1025U, 1535U, 1536U, 1537U}) {
    both.ExpectSame(Task::kProcess, 0, support::WaveFile(support::Noise(samples, 9000, 4)),
                    std::to_string(samples));
  }
}

TEST(CVoiceMathematics, EqualsItsTwinOnMinutesOfSoundWhoseEndsWrap) {
  ClassAndTwin both;
  // Block 32,768 begins at sample 1,802,240.
  for (const std::size_t at : {1795000U, 1799800U}) {
    const Bytes file = support::WaveFile(
        support::Mixed(support::Noise(1830000, 60, 6), at, support::Tone(5000, 70.0, 9000.0)));
    both.ExpectSame(Task::kLearn, 0, file, "burst at " + std::to_string(at));
  }
}

}  // namespace
}  // namespace voicemath
