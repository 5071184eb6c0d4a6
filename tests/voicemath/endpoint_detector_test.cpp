#include "voicemath/endpoint_detector.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "gtest/gtest.h"
#include "tests/support/signals.h"
#include "tests/voicemath/signal_catalogue.h"
#include "tests/voicemath/twins/speech_bounds.h"

namespace voicemath {
namespace {

using Envelope = std::vector<std::int16_t>;

/// Returns whether a part of the recording was selected, and not all of it.
bool ExpectSameAsTwin(const Envelope& envelope, std::uint32_t dataBytes, const std::string& name) {
  Envelope work = envelope;
  const std::optional<Segment> segment = LocateSpeech(work, dataBytes / 2);
  const twins::SpeechSearch expected = twins::LocateSpeech(envelope, dataBytes);
  EXPECT_EQ(segment.has_value(), expected.found) << name;
  const Segment whole{0, dataBytes / 2 - 1};
  EXPECT_EQ(segment.value_or(whole).first, expected.firstSample) << name;
  EXPECT_EQ(segment.value_or(whole).last, expected.lastSample) << name;
  EXPECT_EQ(work, expected.cleared) << name;
  return expected.found && (expected.firstSample > 0 || expected.lastSample < whole.last);
}

bool ExpectSameAsTwin(const Envelope& envelope, const std::string& name) {
  return ExpectSameAsTwin(envelope, static_cast<std::uint32_t>(envelope.size() * 110), name);
}

Envelope RawEnvelope(const support::Samples& samples) {
  twins::ByteFile file(support::WaveFile(samples));
  return twins::RawEnvelope(file, twins::CheckHeader(file));
}

Envelope DrawEnvelope(std::mt19937& random, std::size_t blocks, std::uint32_t below) {
  Envelope envelope(blocks);
  for (std::int16_t& value : envelope) {
    value = static_cast<std::int16_t>(support::Draw(random, below));
  }
  return envelope;
}

/// Runs of even loudness, as words and pauses are.
Envelope DrawRuns(std::mt19937& random, std::size_t blocks) {
  Envelope envelope;
  while (envelope.size() < blocks) {
    const auto level =
        static_cast<std::int16_t>(support::Draw(random, 1U << support::Draw(random, 16)));
    const std::size_t run = 1 + support::Draw(random, 1U << support::Draw(random, 9));
    envelope.insert(envelope.end(), std::min(run, blocks - envelope.size()), level);
  }
  return envelope;
}

TEST(BlockEnvelope, EqualsItsTwinOnEveryBlockOfEveryRecording) {
  for (const NamedSignal& signal : CatalogueOfRecordings()) {
    for (std::size_t at = 0; at + kBlockSamples <= signal.samples.size(); at += kBlockStep) {
      const auto block = std::span(signal.samples).subspan(at).first<kBlockSamples>();
      ASSERT_EQ(BlockEnvelope(block), twins::BlockEnvelope(block)) << signal.name << " at " << at;
    }
  }
}

TEST(BlockEnvelope, EqualsItsTwinIfTheDistanceWraps) {
  for (int others = -32768; others <= 32767; others += 97) {
    for (const int one : {32767, 32766, 600, 0, -1, -600, -32768}) {
      support::Samples block(kBlockSamples, static_cast<std::int16_t>(others));
      block[static_cast<std::size_t>(others + 32768) % kBlockSamples] =
          static_cast<std::int16_t>(one);
      ASSERT_EQ(BlockEnvelope(std::span(block).first<kBlockSamples>()), twins::BlockEnvelope(block))
          << one << " among " << others;
    }
  }
}

TEST(LocateSpeech, EqualsItsTwinOnEveryRecording) {
  int telling = 0;
  for (const NamedSignal& signal : CatalogueOfRecordings()) {
    const auto dataBytes = static_cast<std::uint32_t>(signal.samples.size() * 2);
    telling += ExpectSameAsTwin(RawEnvelope(signal.samples), dataBytes, signal.name) ? 1 : 0;
  }
  EXPECT_GT(telling, 40);
}

TEST(LocateSpeech, EqualsItsTwinForEverySmallNumberOfBlocks) {
  std::mt19937 random(1);
  for (std::size_t blocks = 0; blocks <= 60; ++blocks) {
    for (const std::uint32_t below : {1U, 32U, 33U, 70U, 1000U, 32768U}) {
      ExpectSameAsTwin(DrawEnvelope(random, blocks, below), std::to_string(blocks));
    }
    ExpectSameAsTwin(Envelope(blocks, 32767), "full " + std::to_string(blocks));
  }
}

TEST(LocateSpeech, EqualsItsTwinIfTheDataEndInsideABlock) {
  std::mt19937 random(2);
  for (std::uint32_t dataBytes = 0; dataBytes <= 2300; ++dataBytes) {
    const Envelope envelope = DrawEnvelope(random, dataBytes / 110, 4000);
    ExpectSameAsTwin(envelope, dataBytes, std::to_string(dataBytes));
  }
}

TEST(LocateSpeech, EqualsItsTwinOnPeaksAroundTheSmallestBinWidths) {
  for (std::int16_t peak = 0; peak <= 200; ++peak) {
    Envelope envelope(200, static_cast<std::int16_t>(peak / 3));
    std::fill_n(envelope.begin() + 80, 60, peak);
    ExpectSameAsTwin(envelope, "peak " + std::to_string(peak));
  }
}

TEST(LocateSpeech, EqualsItsTwinOnRandomRuns) {
  std::mt19937 random(3);
  int telling = 0;
  for (int round = 0; round < 1500; ++round) {
    const std::size_t blocks = 1 + support::Draw(random, 1500);
    telling += ExpectSameAsTwin(DrawRuns(random, blocks), std::to_string(round)) ? 1 : 0;
  }
  EXPECT_GT(telling, 1000);
}

TEST(LocateSpeech, EqualsItsTwinOnMinutesOfSound) {
  std::mt19937 random(4);
  for (const std::size_t blocks : {32767U, 32768U, 40000U, 65535U, 65536U, 66000U, 140000U}) {
    ExpectSameAsTwin(DrawRuns(random, blocks), "runs " + std::to_string(blocks));
    ExpectSameAsTwin(DrawEnvelope(random, blocks, 32768), "noise " + std::to_string(blocks));
    ExpectSameAsTwin(Envelope(blocks, 32767), "full " + std::to_string(blocks));
  }
}

TEST(LocateSpeech, EqualsItsTwinIfTheEndsWrap) {
  const std::size_t blocks = 66500;
  int telling = 0;
  for (const std::size_t around : {std::size_t{32768}, std::size_t{65536}}) {
    for (std::size_t at = around - 330; at < around + 130; at += 10) {
      Envelope envelope(blocks, 40);
      std::fill_n(envelope.begin() + static_cast<std::ptrdiff_t>(at), 150, std::int16_t{9000});
      telling += ExpectSameAsTwin(envelope, "burst at " + std::to_string(at)) ? 1 : 0;
    }
  }
  EXPECT_GT(telling, 40);
}

TEST(FindSpeech, SpeechHasAPlaceUpToTheLastBlockThatSixteenBitsCount) {
  constexpr std::int64_t kTooLate = 32768;
  static_assert(kTooLate * kBlockStep == 1'802'240);
  int placed = 0;
  int lost = 0;
  for (std::ptrdiff_t at = 32700; at < 32780; ++at) {
    Envelope envelope(34000, 20);
    std::fill_n(envelope.begin() + at, 10, std::int16_t{9000});
    const auto speech = FindSpeech(envelope);
    ASSERT_TRUE(speech);
    EXPECT_EQ(speech->HavePlace(), speech->right < kTooLate);
    const auto segment = ToSegment(*speech, 2'000'000);
    EXPECT_EQ(segment.has_value(), speech->HavePlace());
    if (segment) {
      ++placed;
      EXPECT_EQ(segment->last, speech->right * 55 + 3307);
    } else {
      ++lost;
    }
  }
  EXPECT_GT(placed, 10);
  EXPECT_GT(lost, 10);
}

}  // namespace
}  // namespace voicemath
