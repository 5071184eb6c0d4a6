#include "voicemath/template_distance.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "gtest/gtest.h"
#include "tests/support/signals.h"
#include "tests/voicemath/bits.h"
#include "tests/voicemath/twins/matching.h"

namespace voicemath {
namespace {

using twins::Template;

/// Returns the distance.
float ExpectSameAsTwin(const Template& a, const Template& b, const std::string& name) {
  const float expected = twins::CompareTemplates(a, b);
  EXPECT_EQ(std::bit_cast<std::uint32_t>(TemplateDistance(a.values, b.values)),
            std::bit_cast<std::uint32_t>(expected))
      << name;
  return expected;
}

bool IsBetweenTheBounds(float distance) { return distance > 0.0F && distance < kMaxDistance; }

void ExpectSameBothWays(const Template& a, const Template& b, const std::string& name) {
  ExpectSameAsTwin(a, b, name);
  ExpectSameAsTwin(b, a, name + ", the other way");
}

/// Values as templates have them: none negative, each some frames long, some of them zero.
Template DrawWord(std::mt19937& random, std::size_t frames) {
  Template word{.frameCount = static_cast<std::uint16_t>(frames), .values = {}};
  float level = 0.0F;
  for (std::size_t i = 0; i < frames * kBandCount; ++i) {
    if (support::Draw(random, 4) == 0) {
      level = static_cast<float>(support::Draw(random, 1U << 24U));
    }
    word.values.push_back(support::Draw(random, 9) == 0 ? 0.0F : level);
  }
  return word;
}

Template DrawAnything(std::mt19937& random, std::size_t frames) {
  Template any{.frameCount = static_cast<std::uint16_t>(frames), .values = {}};
  for (std::size_t i = 0; i < frames * kBandCount; ++i) {
    any.values.push_back(std::bit_cast<float>(static_cast<std::uint32_t>(random())));
  }
  return any;
}

/// `frames` frames of `word` from frame `from` on, its last frame held where it ends.
Template Part(const Template& word, std::size_t from, std::size_t frames) {
  Template part{.frameCount = static_cast<std::uint16_t>(frames), .values = {}};
  for (std::size_t f = 0; f < frames; ++f) {
    const std::size_t source = std::min<std::size_t>(from + f, word.frameCount - 1U);
    for (std::size_t k = 0; k < kBandCount; ++k) {
      part.values.push_back(word.values[source * kBandCount + k]);
    }
  }
  return part;
}

TEST(TemplateDistance, EqualsItsTwinForEveryPairOfSmallFrameCounts) {
  std::mt19937 random(11);
  for (std::size_t a = 0; a <= 24; ++a) {
    for (std::size_t b = 0; b <= 24; ++b) {
      ExpectSameAsTwin(DrawWord(random, a), DrawWord(random, b),
                       std::to_string(a) + " and " + std::to_string(b));
    }
  }
}

TEST(TemplateDistance, EqualsItsTwinOnWordsOfUsualLength) {
  std::mt19937 random(12);
  int telling = 0;
  for (int round = 0; round < 150; ++round) {
    const std::size_t a = 10 + support::Draw(random, 52);
    const std::size_t b = 10 + support::Draw(random, 52);
    const float distance = ExpectSameAsTwin(DrawWord(random, a), DrawWord(random, b),
                                            "round " + std::to_string(round));
    telling += IsBetweenTheBounds(distance) ? 1 : 0;
  }
  EXPECT_GT(telling, 100);
}

TEST(TemplateDistance, EqualsItsTwinOnSpeakingsOfOneWord) {
  std::mt19937 random(13);
  for (int round = 0; round < 200; ++round) {
    const Template word = DrawWord(random, 40);
    Template other = Part(word, support::Draw(random, 6), 30 + support::Draw(random, 20));
    const float loudness = 0.25F + 0.01F * static_cast<float>(support::Draw(random, 300));
    for (float& value : other.values) {
      value *= loudness;
      value += static_cast<float>(support::Draw(random, 1000));
    }
    ExpectSameBothWays(word, other, "round " + std::to_string(round));
  }
}

TEST(TemplateDistance, EqualsItsTwinOnShiftsUpToAndBeyondTheLast) {
  std::mt19937 random(14);
  const Template word = DrawWord(random, 30);
  for (std::size_t from = 0; from <= 8; ++from) {
    for (std::size_t frames = 20; frames <= 36; ++frames) {
      ExpectSameBothWays(word, Part(word, from, frames),
                         std::to_string(from) + " for " + std::to_string(frames));
    }
  }
}

TEST(TemplateDistance, EqualsItsTwinOnSilence) {
  for (std::size_t a = 0; a <= 5; ++a) {
    for (std::size_t b = 0; b <= 5; ++b) {
      const Template silent{.frameCount = static_cast<std::uint16_t>(a),
                            .values = std::vector<float>(a * kBandCount)};
      const Template even{.frameCount = static_cast<std::uint16_t>(b),
                          .values = std::vector<float>(b * kBandCount, 3.0F)};
      ExpectSameBothWays(silent, even, std::to_string(a) + " and " + std::to_string(b));
      ExpectSameBothWays(silent, silent, std::to_string(a));
    }
  }
}

TEST(TemplateDistance, EqualsItsTwinOnValuesThatNoRecordingGives) {
  std::mt19937 random(15);
  int telling = 0;
  for (int round = 0; round < 1500; ++round) {
    // Few frames, so that there are templates with and without infinities and what is no number.
    const Template a = DrawAnything(random, support::Draw(random, 4));
    const Template b = DrawAnything(random, support::Draw(random, 4));
    telling += IsBetweenTheBounds(ExpectSameAsTwin(a, b, std::to_string(round))) ? 1 : 0;
  }
  EXPECT_GT(telling, 50);
  for (int round = 0; round < 100; ++round) {
    ExpectSameAsTwin(DrawAnything(random, 30), DrawAnything(random, 40), std::to_string(round));
  }
}

TEST(TemplateDistance, EqualsItsTwinOnNormsAtTheEdges) {
  std::mt19937 random(16);
  // Squares that vanish, that lose digits, and that overflow.
  for (const std::uint32_t exponent : {0U, 30U, 50U, 60U, 66U, 185U, 190U, 200U, 250U}) {
    for (int round = 0; round < 40; ++round) {
      Template a = DrawWord(random, 3 + support::Draw(random, 5));
      Template b = DrawWord(random, 3 + support::Draw(random, 5));
      for (float& value : a.values) {
        value = DrawFloat(random, exponent, 4);
      }
      ExpectSameBothWays(a, b, "exponent " + std::to_string(exponent));
    }
  }
}

TEST(TemplateDistance, EqualsItsTwinOnFrameCountsAbove32767) {
  std::mt19937 random(17);
  const Template longest = DrawWord(random, 65535);
  ExpectSameAsTwin(longest, longest, "itself");
  ExpectSameAsTwin(longest, Part(longest, 1, 65535), "shifted by one");
  ExpectSameBothWays(longest, Part(longest, 3, 65530), "shorter by five");
  ExpectSameBothWays(longest, {}, "none");
  const Template half = DrawWord(random, 32768);
  ExpectSameBothWays(half, Part(half, 0, 32767), "across the sign");
}

TEST(TemplateDistance, EqualsItsTwinOnOneFrameAgainstMany) {
  std::mt19937 random(18);
  ExpectSameBothWays(DrawWord(random, 1), DrawWord(random, 700), "700");
  Template flat{.frameCount = 500, .values = std::vector<float>(2500, 1.0F)};
  Template one{.frameCount = 1, .values = std::vector<float>(5, 0.001F)};
  ExpectSameBothWays(one, flat, "flat");
}

}  // namespace
}  // namespace voicemath
