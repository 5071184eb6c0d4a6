#include <cstdint>
#include <random>
#include <string>

#include "gtest/gtest.h"
#include "tests/support/signals.h"
#include "tests/voicemath/class_twin.h"

namespace voicemath {
namespace {

using support::Bytes;
using support::Samples;

/// A second or less with one loud part in it.
Samples DrawRecording(std::mt19937& random, std::size_t count) {
  const std::size_t at = support::Draw(random, static_cast<std::uint32_t>(count));
  const std::size_t length = 200 + support::Draw(random, 4000);
  const auto seed = static_cast<std::uint32_t>(random());
  return support::Mixed(support::Noise(count, 40, seed), at,
                        support::Noise(length, 100 << support::Draw(random, 8), seed + 1));
}

Bytes Recording(std::size_t count, std::size_t burstAt) {
  return support::BytesOf(
      support::Mixed(support::Noise(count, 50, 8), burstAt, support::Tone(1500, 61.0, 12000.0)));
}

TEST(CVoiceMathematics, EqualsItsTwinAtWhateverPlaceTheDataBegin) {
  ClassAndTwin both;
  for (const std::size_t idOffset : {12U, 24U, 36U, 40U, 44U, 48U, 60U, 88U, 92U, 96U}) {
    for (const std::size_t burstAt : {0U, 6000U, 14000U}) {
      const Bytes content = Recording(16000, burstAt);
      const std::string name = std::to_string(idOffset) + ", burst at " + std::to_string(burstAt);
      both.ExpectSameTwice(support::WaveFileWithDataAt(idOffset, 32000, content), name);
    }
  }
}

TEST(CVoiceMathematics, EqualsItsTwinIfTheDataIdIsNotToBeFound) {
  ClassAndTwin both;
  for (const std::size_t idOffset : {37U, 38U, 39U, 42U, 58U, 93U, 94U, 97U, 98U, 104U}) {
    const auto file = support::WaveFileWithDataAt(idOffset, 4000, Recording(2000, 500));
    EXPECT_EQ(both.ExpectSame(Task::kLearn, 0, file, std::to_string(idOffset)).headerCode, 7);
  }
}

TEST(CVoiceMathematics, EqualsItsTwinIfTheDataSizeIsAFormatFieldToo) {
  ClassAndTwin both;
  // "data" at 16: the size is the format tag and the channel count.
  const Bytes tagged =
      support::WaveFileWithDataAt(16, 0x00010001U, support::BytesOf(support::Noise(40000, 900, 1)));
  EXPECT_EQ(both.ExpectSameTwice(tagged, "id at 16").result, 0);
}

TEST(CVoiceMathematics, EqualsItsTwinIfDataThatBeganEarlyOverwriteThemselves) {
  ClassAndTwin both;
  // The spoken part begins at once, so what is kept moves towards the end of the file.
  const Samples samples =
      support::Mixed(support::Noise(20000, 30, 2), 100, support::Noise(6000, 20000, 3));
  for (const std::size_t idOffset : {12U, 24U}) {
    const auto learned = both.ExpectSameTwice(
        support::WaveFileWithDataAt(idOffset, 40000, support::BytesOf(samples)),
        std::to_string(idOffset));
    EXPECT_EQ(learned.firstSample, 0U);
    EXPECT_LT(learned.lastSample, 19999U);
  }
}

TEST(CVoiceMathematics, EqualsItsTwinIfTheFileHoldsLessThanItClaims) {
  ClassAndTwin both;
  for (const std::size_t idOffset : {12U, 36U, 96U}) {
    for (std::size_t lacking = 0; lacking <= idOffset + 9; lacking += 11) {
      for (const std::size_t burstAt : {0U, 3000U, 6500U}) {
        // 15 hops, so that the last frame reaches to where the data should end.
        Bytes file = support::WaveFileWithDataAt(idOffset, 15360, Recording(7680, burstAt));
        file.resize(file.size() - lacking);
        const std::string name = std::to_string(idOffset) + " lacking " + std::to_string(lacking);
        both.ExpectSame(Task::kLearn, 0, file, name);
        both.ExpectSame(Task::kProcess, 0, file, name);
      }
    }
  }
}

TEST(CVoiceMathematics, EqualsItsTwinIfMoreFollowsTheData) {
  ClassAndTwin both;
  for (std::uint32_t claimed = 9000; claimed < 9300; claimed += 37) {
    both.ExpectSameTwice(support::WaveFileWithDataAt(36, claimed, Recording(6000, 2000)),
                         std::to_string(claimed));
  }
}

TEST(CVoiceMathematics, EqualsItsTwinOnEveryFaultyHeader) {
  ClassAndTwin both;
  const Bytes good = support::WaveFileWithDataAt(36, 4000, Recording(2000, 500));
  int refused = 0;
  for (std::size_t at = 0; at < 44; ++at) {
    for (const unsigned change : {1U, 0x20U, 0x80U}) {
      Bytes file = good;
      file[at] ^= static_cast<std::byte>(change);
      // A small data size would only wrap the frame count.
      if (at < 40 || at > 41) {
        refused += both.ExpectSame(Task::kLearn, 0, file, std::to_string(at)).result == 2 ? 1 : 0;
      }
    }
  }
  // Three changes each to "RIFF", "WAVE", the format tag, the channels, the bits, "data" and the
  // upper half of the data size.
  EXPECT_EQ(refused, 60);
  for (std::size_t length = 0; length < 44; ++length) {
    both.ExpectSame(Task::kProcess, 0, Bytes(good.begin(), good.begin() + static_cast<int>(length)),
                    "length " + std::to_string(length));
  }
}

TEST(CVoiceMathematics, EqualsItsTwinIfTheFrameCountWraps) {
  ClassAndTwin both;
  const Bytes content = support::BytesOf(support::Noise(600, 5000, 9));
  EXPECT_EQ(both.ExpectSame(Task::kLearn, 0, support::WaveFileWithDataAt(36, 1022, content), "511")
                .computed.frameCount,
            65535);
  both.ExpectSame(Task::kProcess, 0, support::WaveFileWithDataAt(36, 0, {}), "no data");
  both.ExpectSame(Task::kLearn, 0, support::WaveFileWithDataAt(36, 1, Bytes(1)), "half a sample");
  both.ExpectSame(Task::kLearn, 0, support::WaveFileWithDataAt(36, 1024, content), "512");
}

TEST(CVoiceMathematics, EqualsItsTwinIfAFrameFindsHalfASample) {
  ClassAndTwin both;
  // Frames wrap here, so that there is one that begins with the last byte of the file.
  Bytes content = support::BytesOf(support::Noise(513, 5000, 9));
  content.pop_back();
  both.ExpectSame(Task::kProcess, 0, support::WaveFileWithDataAt(36, 1000, content), "one byte");
}

TEST(CVoiceMathematics, EqualsItsTwinOnRandomFiles) {
  ClassAndTwin both;
  std::mt19937 random(2025);
  int trimmed = 0;
  for (int round = 0; round < 120; ++round) {
    const std::size_t count = 1100 + support::Draw(random, 9000);
    const std::size_t idOffset =
        support::Draw(random, 3) == 0 ? 12 : 36 + 4 * support::Draw(random, 16);
    const auto claimed = static_cast<std::uint32_t>(2 * count) - support::Draw(random, 60);
    Bytes file = support::WaveFileWithDataAt(idOffset, claimed,
                                             support::BytesOf(DrawRecording(random, count)));
    file.resize(file.size() - support::Draw(random, 30));
    const auto learned = both.ExpectSame(Task::kLearn, round % 101, file, std::to_string(round));
    trimmed += learned.result == 0 && learned.after != file ? 1 : 0;
  }
  EXPECT_GT(trimmed, 40);
}

TEST(CVoiceMathematics, EqualsItsTwinOnTheHighestSlots) {
  ClassAndTwin both;
  const Bytes file = support::WaveFileWithDataAt(36, 12000, Recording(6000, 3000));
  for (const std::int32_t slot : {0, 1, 99, 100, 101, 2147483647}) {
    both.ExpectSame(Task::kLearn, slot, file, "slot " + std::to_string(slot));
    both.ExpectSame(Task::kProcess, slot, file, "slot " + std::to_string(slot));
  }
}

}  // namespace
}  // namespace voicemath
