#include "voicemath/take_quality.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <random>

#include "tests/support/signals.h"

namespace {

using support::Samples;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using voicemath::TakeQuality;
using voicemath::Verdict;

constexpr std::size_t kTakeSamples = 33075;
constexpr std::size_t kWordSamples = 6000;

/// Syllables of a gliding voice that begin and end within a few milliseconds.
Samples Word(std::uint32_t seed = 1, double amplitude = 9000, std::size_t count = kWordSamples) {
  Samples word = support::SpeechLike(count, amplitude, seed);
  // Without the hiss that comes with the voice, so that the test chooses the room.
  const Samples hiss = support::Noise(count, 60, seed + 1);
  for (std::size_t i = 0; i < count; ++i) {
    word[i] = static_cast<std::int16_t>(word[i] - hiss[i]);
  }
  return word;
}

Samples Room(int amplitude) { return support::Noise(kTakeSamples, amplitude, 99); }

Samples WordInRoom(const Samples& word, int room = 20, std::size_t at = 9000) {
  return support::Mixed(Room(room), at, word);
}

TakeQuality Judge(const Samples& samples) { return voicemath::JudgeTake({.samples = samples}); }

std::vector<Verdict> VerdictsOf(const Samples& samples) { return Judge(samples).verdicts; }

Samples Scaled(Samples samples, double factor) {
  for (std::int16_t& sample : samples) {
    sample = static_cast<std::int16_t>(std::lround(sample * factor));
  }
  return samples;
}

Samples Clipped(Samples samples, int lowest, int highest) {
  for (std::int16_t& sample : samples) {
    sample = static_cast<std::int16_t>(std::clamp<int>(sample, lowest, highest));
  }
  return samples;
}

int HeightOf(const Samples& samples) {
  int height = 0;
  for (const std::int16_t sample : samples) {
    height = std::max(height, std::abs(sample));
  }
  return height;
}

/// What is left of a knock after `i` samples.
double Knock(std::size_t i, double hertz, double samplesToDie) {
  const double turn = 2 * std::numbers::pi * hertz / voicemath::kSamplesPerSecond;
  const auto time = static_cast<double>(i);
  return std::sin(turn * time) * std::exp(-time / samplesToDie);
}

Samples Knocks(double hertz, double samplesToDie, double height) {
  Samples knock(2000);
  for (std::size_t i = 0; i < knock.size(); ++i) {
    knock[i] = static_cast<std::int16_t>(height * Knock(i, hertz, samplesToDie));
  }
  Samples take = Room(10);
  for (const std::size_t at : {4000U, 11000U, 17000U, 25000U}) {
    take = support::Mixed(take, at, knock);
  }
  return take;
}

TEST(TakeQuality, AWordInAQuietRoomIsGood) {
  for (std::uint32_t seed = 1; seed <= 12; ++seed) {
    for (const double amplitude : {1000.0, 9000.0}) {
      EXPECT_THAT(VerdictsOf(WordInRoom(Word(seed, amplitude), static_cast<int>(amplitude / 150))),
                  IsEmpty())
          << seed << " " << amplitude;
    }
  }
}

TEST(TakeQuality, PeakAndDistanceFromTheRoomAreMeasured) {
  const Samples word = Word();
  const TakeQuality quality = Judge(WordInRoom(word, 20));
  EXPECT_NEAR(quality.peakDb, 20 * std::log10(HeightOf(word) / 32768.0), 0.3);
  const TakeQuality louder = Judge(WordInRoom(word, 200));
  EXPECT_NEAR(quality.snrDb - louder.snrDb, 20, 1);
}

TEST(TakeQuality, AnOffsetChangesNothing) {
  Samples take = WordInRoom(Word());
  const TakeQuality without = Judge(take);
  for (std::int16_t& sample : take) {
    sample = static_cast<std::int16_t>(sample + 3000);
  }
  const TakeQuality with = Judge(take);
  EXPECT_EQ(with.verdicts, without.verdicts);
  EXPECT_NEAR(with.peakDb, without.peakDb, 0.1);
  EXPECT_NEAR(with.snrDb, without.snrDb, 0.1);
}

TEST(TakeQuality, WhatAMutedMicrophoneGivesIsSilent) {
  EXPECT_THAT(VerdictsOf(support::Constant(kTakeSamples, 0)), ElementsAre(Verdict::kSilent));
  EXPECT_THAT(VerdictsOf(support::Constant(kTakeSamples, -3077)), ElementsAre(Verdict::kSilent));
  EXPECT_THAT(VerdictsOf(Room(1)), ElementsAre(Verdict::kSilent));
  EXPECT_THAT(VerdictsOf(Room(3)), ElementsAre(Verdict::kSilent));
  EXPECT_EQ(Judge(support::Constant(kTakeSamples, 0)).peakDb, voicemath::kLowestPeakDb);
  EXPECT_EQ(Judge(support::Constant(kTakeSamples, 0)).snrDb, 0);
}

TEST(TakeQuality, AMutedMicrophoneThatPopsIsSilent) {
  Samples pop(800);
  for (std::size_t i = 0; i < pop.size(); ++i) {
    pop[i] = static_cast<std::int16_t>(9000 * Knock(i, 100, 80));
  }
  EXPECT_THAT(VerdictsOf(support::Mixed(Room(1), 12000, pop)), Contains(Verdict::kSilent));
}

TEST(TakeQuality, NoiseHumAndTonesAreNoSpeech) {
  EXPECT_THAT(VerdictsOf(Room(3000)), Contains(Verdict::kNoSpeech));
  EXPECT_THAT(VerdictsOf(Room(100)), ElementsAre(Verdict::kNoSpeech));
  constexpr double kBin = 1024.0 / 11025;
  Samples hum = Room(30);
  for (const double harmonic : {1.0, 2.0, 3.0, 5.0, 7.0}) {
    hum =
        support::Mixed(hum, 0, support::Tone(kTakeSamples, 50 * harmonic * kBin, 3000 / harmonic));
  }
  EXPECT_THAT(VerdictsOf(hum), Contains(Verdict::kNoSpeech));
  EXPECT_THAT(VerdictsOf(support::Tone(kTakeSamples, 1000 * kBin, 8000)),
              Contains(Verdict::kNoSpeech));
  Samples beeps = Room(30);
  for (const std::size_t at : {5000U, 12000U, 20000U}) {
    beeps = support::Mixed(beeps, at, support::Tone(3000, 700 * kBin, 8000));
  }
  EXPECT_THAT(VerdictsOf(beeps), Contains(Verdict::kNoSpeech));
}

TEST(TakeQuality, AHumThatBeginsOrSwellsIsNoSpeech) {
  constexpr double kBin = 1024.0 / 11025;
  for (const double hertz : {50.0, 60.0, 100.0, 120.0}) {
    Samples hum(kTakeSamples);
    for (const double harmonic : {1.0, 2.0, 3.0, 4.0, 5.0, 7.0, 9.0}) {
      hum = support::Mixed(
          hum, 0, support::Tone(kTakeSamples, hertz * harmonic * kBin, 4000 / std::sqrt(harmonic)));
    }
    const Samples begun =
        support::Mixed(Room(30), 12000, Samples(hum.begin(), hum.begin() + 15000));
    EXPECT_THAT(VerdictsOf(begun), Contains(Verdict::kNoSpeech)) << hertz;
    for (std::size_t i = 0; i < hum.size(); ++i) {
      const double turn = 2 * std::numbers::pi * static_cast<double>(i) / kTakeSamples;
      hum[i] = static_cast<std::int16_t>(hum[i] * (0.55 - 0.45 * std::cos(2 * turn)));
    }
    EXPECT_THAT(VerdictsOf(support::Mixed(Room(30), 0, hum)), Contains(Verdict::kNoSpeech))
        << hertz;
  }
}

TEST(TakeQuality, KnocksAndClicksAreNoSpeech) {
  EXPECT_THAT(VerdictsOf(Knocks(180, 120, 15000)), Contains(Verdict::kNoSpeech));
  EXPECT_THAT(VerdictsOf(Knocks(400, 60, 15000)), Contains(Verdict::kNoSpeech));
  EXPECT_THAT(VerdictsOf(Knocks(2500, 15, 15000)), Contains(Verdict::kNoSpeech));
  EXPECT_THAT(
      VerdictsOf(support::Mixed(Room(10), 0, support::Impulses(kTakeSamples, 3000, 5000, 9000))),
      Contains(Verdict::kNoSpeech));
}

TEST(TakeQuality, NoiseThatSwellsAndFadesIsNoSpeech) {
  Samples take = Room(4000);
  for (std::size_t i = 0; i < take.size(); ++i) {
    const double away = (static_cast<double>(i) - 15000) / 5000;
    take[i] = static_cast<std::int16_t>(take[i] * (0.02 + std::exp(-away * away)));
  }
  EXPECT_THAT(VerdictsOf(take), Contains(Verdict::kNoSpeech));
}

TEST(TakeQuality, APeakBelowMinusFortyIsSoft) {
  const Samples word = Word();
  const double atLimit = 327.68 / HeightOf(word);
  for (const auto& [factor, isSoft] :
       {std::pair(1.2, false), std::pair(0.85, true), std::pair(0.2, true)}) {
    const Samples take = WordInRoom(Scaled(word, atLimit * factor), 2);
    const std::vector<Verdict> verdicts = VerdictsOf(take);
    EXPECT_EQ(verdicts.size(), isSoft ? 1U : 0U) << factor;
    EXPECT_EQ(std::ranges::count(verdicts, Verdict::kSoft), isSoft ? 1 : 0) << factor;
  }
}

TEST(TakeQuality, AClickThatIsLouderDoesNotHideThatTheWordIsSoft) {
  Samples take = WordInRoom(Word(1, 100), 2);
  take[2000] = 9000;
  EXPECT_THAT(VerdictsOf(take), Contains(Verdict::kSoft));
}

TEST(TakeQuality, AFlatTopIsClippedHoweverFarItIsTurnedDown) {
  const Samples loud = WordInRoom(Word(3, 20000));
  EXPECT_THAT(VerdictsOf(loud), IsEmpty());
  const int height = HeightOf(loud) / 2;
  const Samples clipped = Clipped(loud, -height, height);
  EXPECT_THAT(VerdictsOf(clipped), ElementsAre(Verdict::kClipped));
  EXPECT_THAT(VerdictsOf(Scaled(clipped, 0.37)), ElementsAre(Verdict::kClipped));
  EXPECT_THAT(VerdictsOf(Scaled(clipped, 0.06)), Contains(Verdict::kClipped));
  EXPECT_THAT(VerdictsOf(Clipped(loud, -32768, height)), ElementsAre(Verdict::kClipped))
      << "One side is enough.";
}

/// The samples that lie in the middle between each two, as another clock would have taken them.
Samples TakenHalfASampleLater(const Samples& samples) {
  constexpr int kReach = 20;
  Samples later(samples.size());
  for (std::size_t i = 0; i < samples.size(); ++i) {
    double sum = 0;
    for (int k = -kReach; k < kReach; ++k) {
      const double at = k + 0.5;
      const double window = 0.5 + 0.5 * std::cos(std::numbers::pi * at / (kReach + 0.5));
      const auto from = static_cast<std::size_t>(std::clamp<std::int64_t>(
          static_cast<std::int64_t>(i) - k, 0, static_cast<std::int64_t>(samples.size()) - 1));
      sum += samples[from] * window * std::sin(std::numbers::pi * at) / (std::numbers::pi * at);
    }
    later[i] = static_cast<std::int16_t>(std::lround(std::clamp(sum, -32768.0, 32767.0)));
  }
  return later;
}

TEST(TakeQuality, AFlatTopIsMostlyFoundIfItsRateWasChangedAfterwards) {
  std::size_t found = 0;
  for (std::uint32_t seed = 1; seed <= 12; ++seed) {
    const Samples loud = WordInRoom(Word(seed, 20000));
    const int height = HeightOf(loud) / 3;
    for (const int lowest : {-height, -32768}) {
      const auto verdicts = VerdictsOf(TakenHalfASampleLater(Clipped(loud, lowest, height)));
      found += verdicts == std::vector{Verdict::kClipped} ? 1U : 0U;
    }
    EXPECT_THAT(VerdictsOf(TakenHalfASampleLater(loud)), IsEmpty()) << seed;
  }
  EXPECT_GE(found, 20U) << "Of 24.";
}

TEST(TakeQuality, AWordHardlyLouderThanTheRoomIsNoisy) {
  const Samples word = Word(2, 9000);
  double energy = 0;
  for (const std::int16_t sample : word) {
    energy += static_cast<double>(sample) * sample / static_cast<double>(word.size());
  }
  // Even noise has a third of the square of its amplitude.
  const auto roomAt = [&](double snrDb) {
    return static_cast<int>(std::sqrt(3 * energy / std::pow(10, snrDb / 10)));
  };
  for (const double snrDb : {2.0, 5.0, 7.0}) {
    EXPECT_THAT(VerdictsOf(WordInRoom(word, roomAt(snrDb))), Contains(Verdict::kNoisy)) << snrDb;
  }
  for (const double snrDb : {13.0, 20.0, 40.0}) {
    EXPECT_THAT(VerdictsOf(WordInRoom(word, roomAt(snrDb))), IsEmpty()) << snrDb;
  }
}

TEST(TakeQuality, SpeechAtAnEdgeIsCut) {
  const Samples word = Word();
  const Samples take = WordInRoom(word, 20, 9000);
  const std::span whole(take);
  const auto judge = [](std::span<const std::int16_t> samples) {
    return voicemath::JudgeTake({.samples = samples}).verdicts;
  };
  EXPECT_THAT(judge(whole.subspan(9000 + 800)), ElementsAre(Verdict::kCutStart));
  EXPECT_THAT(judge(whole.first(9000 + 4200)), ElementsAre(Verdict::kCutEnd));
  EXPECT_THAT(judge(whole.subspan(9000 - 1100)), IsEmpty()) << "0.1 s of the room is enough.";
  EXPECT_THAT(judge(whole.first(9000 + kWordSamples + 1100)), IsEmpty());
}

TEST(TakeQuality, TheClickOfTheButtonIsNoCutSpeech) {
  Samples take = WordInRoom(Word(), 20, 4000);
  for (std::size_t i = 0; i < 300; ++i) {
    take[i] = static_cast<std::int16_t>(take[i] + 6000 * Knock(i, 900, 30));
  }
  EXPECT_THAT(VerdictsOf(take), IsEmpty());
}

TEST(TakeQuality, LessThanEightHundredthsOfASecondAreShort) {
  const Samples word = Word();
  const std::span middle = std::span(word).subspan(400);
  for (const std::size_t count : {400U, 600U, 800U}) {
    const Samples part(middle.begin(), middle.begin() + static_cast<std::ptrdiff_t>(count));
    EXPECT_THAT(VerdictsOf(WordInRoom(part)), Contains(Verdict::kShort)) << count;
  }
  const Samples enough(middle.begin(), middle.begin() + 1700);
  EXPECT_THAT(VerdictsOf(WordInRoom(enough)), Not(Contains(Verdict::kShort)));
}

TEST(TakeQuality, AnotherRateIsNamedAndTheRestIsJudgedInItsTime) {
  const Samples take = WordInRoom(Word());
  Samples doubled;
  for (const std::int16_t sample : take) {
    doubled.insert(doubled.end(), 2, sample);
  }
  EXPECT_THAT(voicemath::JudgeTake({.samples = doubled, .rate = 22050}).verdicts,
              ElementsAre(Verdict::kRate));
  EXPECT_THAT(voicemath::JudgeTake({.samples = Room(1), .rate = 44100}).verdicts,
              ElementsAre(Verdict::kRate, Verdict::kSilent));
}

TEST(TakeQuality, ALostDeviceIsNamedFirst) {
  const Samples take = WordInRoom(Word(1, 100), 2);
  EXPECT_THAT(voicemath::JudgeTake({.samples = take, .isInterrupted = true}).verdicts,
              ElementsAre(Verdict::kInterrupted, Verdict::kSoft));
}

TEST(TakeQuality, NobodyIsAskedToSpeakEarlierIfTheDeviceWasLostWithinTheWord) {
  Samples take = WordInRoom(Word());
  take.resize(12000);
  EXPECT_THAT(VerdictsOf(take), ElementsAre(Verdict::kCutEnd));
  EXPECT_THAT(voicemath::JudgeTake({.samples = take, .isInterrupted = true}).verdicts,
              ElementsAre(Verdict::kInterrupted));
}

TEST(TakeQuality, AnyLengthAndAnyRateHasAJudgement) {
  const Samples samples = support::Extremes(3000, 7);
  for (const std::size_t count : {0U, 1U, 2U, 109U, 110U, 111U, 550U, 551U, 3000U}) {
    for (const std::uint32_t rate : {0U, 1U, 99U, 8000U, 11025U, 192'000U, 4'000'000'000U}) {
      const TakeQuality quality =
          voicemath::JudgeTake({.samples = std::span(samples).first(count), .rate = rate});
      EXPECT_FALSE(quality.verdicts.empty()) << count << " " << rate;
      EXPECT_TRUE(std::isfinite(quality.peakDb)) << count << " " << rate;
      EXPECT_TRUE(std::isfinite(quality.snrDb)) << count << " " << rate;
    }
  }
}

TEST(TakeQuality, AVerdictStandsOnceAndAtItsPlace) {
  TakeQuality quality;
  quality.Add(Verdict::kTooAlike);
  quality.Add(Verdict::kSoft);
  quality.Add(Verdict::kTooAlike);
  quality.Add(Verdict::kRate);
  EXPECT_THAT(quality.verdicts, ElementsAre(Verdict::kRate, Verdict::kSoft, Verdict::kTooAlike));
  EXPECT_EQ(voicemath::ToWord(Verdict::kInterrupted), "interrupted");
  EXPECT_EQ(voicemath::ToWord(Verdict::kNoSpeech), "no-speech");
  EXPECT_EQ(voicemath::ToWord(Verdict::kTooAlike), "too-alike");
}

TEST(PeakDb, IsThatOfTheLargestSampleOfEitherSign) {
  EXPECT_EQ(voicemath::PeakDb({}), voicemath::kLowestPeakDb);
  EXPECT_EQ(voicemath::PeakDb(support::Constant(10, 0)), voicemath::kLowestPeakDb);
  EXPECT_NEAR(voicemath::PeakDb(Samples{100, -16384, 3}), -6.02, 0.01);
  EXPECT_EQ(voicemath::PeakDb(Samples{-32768}), 0.0);
}

}  // namespace
