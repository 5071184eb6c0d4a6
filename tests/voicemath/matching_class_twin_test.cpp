#include <algorithm>
#include <bit>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "gtest/gtest.h"
#include "tests/support/signals.h"
#include "tests/voicemath/bits.h"
#include "tests/voicemath/class_twin.h"
#include "tests/voicemath/twins/matching.h"

namespace voicemath {
namespace {

/// A base of learned words of different lengths, two of them the same.
std::vector<twins::Template> Learn(ClassAndTwin& both, std::int32_t words) {
  std::vector<twins::Template> stored;
  for (std::int32_t slot = 0; slot < words; ++slot) {
    const auto seed = static_cast<std::uint32_t>(slot == 3 ? 1 : slot);
    const auto file = support::WaveFile(support::SpeechLike(3000 + 700 * (seed % 9), 9000.0, seed));
    const std::string name = "word " + std::to_string(slot);
    stored.push_back(both.ExpectSame(Task::kProcess, slot, file, name).computed);
  }
  return stored;
}

/// A hundred words of a few random frames, put where the class keeps them.
std::vector<twins::Template> PutShortWords(ClassAndTwin& both) {
  std::mt19937 random(100);
  std::vector<twins::Template> stored;
  for (std::size_t slot = 0; slot < 100; ++slot) {
    twins::Template word{.frameCount = static_cast<std::uint16_t>(1 + support::Draw(random, 5)),
                         .values = {}};
    for (std::size_t i = 0; i < std::size_t{word.frameCount} * 5; ++i) {
      word.values.push_back(static_cast<float>(support::Draw(random, 1U << 20U)));
    }
    auto values = std::make_unique<float[]>(word.values.size());
    std::copy(word.values.begin(), word.values.end(), values.get());
    EXPECT_TRUE(both.Mathematics().SetTemplate(slot, std::move(values), word.frameCount));
    stored.push_back(word);
  }
  return stored;
}

void ExpectSameDistances(ClassAndTwin& both, const std::vector<twins::Template>& stored) {
  for (std::size_t a = 0; a < stored.size(); ++a) {
    for (std::size_t b = 0; b < stored.size(); ++b) {
      const float distance = both.Mathematics().CompareTemplates(static_cast<std::int32_t>(a),
                                                                 static_cast<std::int32_t>(b));
      EXPECT_EQ(std::bit_cast<std::uint32_t>(distance),
                std::bit_cast<std::uint32_t>(twins::CompareTemplates(stored[a], stored[b])))
          << a << " and " << b;
    }
  }
}

void ExpectSameThresholds(ClassAndTwin& both, const std::vector<twins::Template>& stored,
                          std::int32_t count) {
  both.Mathematics().m_count = count;
  EXPECT_EQ(both.Mathematics().ComputeThresholds(), count);
  EXPECT_EQ(BitsOf(both.Mathematics().m_thresholds),
            BitsOf(twins::AcceptanceDistances(stored, count)))
      << count;
}

TEST(CVoiceMathematics, EqualsItsTwinInAllDistancesOfABase) {
  ClassAndTwin both;
  const std::vector<twins::Template> stored = Learn(both, 14);
  ExpectSameDistances(both, stored);
  EXPECT_EQ(both.Mathematics().CompareTemplates(1, 3), 0.0F);
}

TEST(CVoiceMathematics, EqualsItsTwinInTheAcceptanceDistancesForEveryCount) {
  ClassAndTwin both;
  const std::vector<twins::Template> stored = Learn(both, 12);
  for (std::int32_t count = -1; count <= 12; ++count) {
    ExpectSameThresholds(both, stored, count);
  }
  EXPECT_LT(both.Mathematics().m_thresholds[5], 2.0F);
}

TEST(CVoiceMathematics, EqualsItsTwinInTheAcceptanceDistancesOfAFullBase) {
  ClassAndTwin both;
  const std::vector<twins::Template> stored = PutShortWords(both);
  for (const std::int32_t count : {3, 7, 23, 61, 100}) {
    ExpectSameThresholds(both, stored, count);
  }
}

TEST(CVoiceMathematics, EqualsItsTwinIfTheCountIsBeyondTheSlots) {
  ClassAndTwin both;
  std::vector<twins::Template> stored = Learn(both, 6);
  stored.resize(100);  // The others are empty.
  for (const std::int32_t count : {7, 99, 100, 101, 150, 2147483647}) {
    ExpectSameThresholds(both, stored, count);
  }
}

}  // namespace
}  // namespace voicemath
