#include "voicemath/take_quality.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <utility>

#include "voicemath/take_blocks.h"
#include "voicemath/take_speech.h"

namespace voicemath {
namespace {

// Limits. docs/quality.md says what they were chosen by.
constexpr double kFullScale = 32768;
constexpr float kSilentLevel = 6.1F;  ///< Of a muted device: 2 steps of 16 bits, in decibels.
constexpr double kSoftPeakDb = -40;
/// The louder half of a word counts in its level. So 8 dB above the room measure as about 10.
constexpr double kNoisyDb = 10;
constexpr float kLoudRoomDb = 45.3F;  ///< A room in which speech drowns: -45 dB of full scale.
constexpr float kRoomLevel = 0.7F;    ///< Of the blocks without speech, those that are quieter.
constexpr std::size_t kShortBlocks = 8;

constexpr double kClippedShare = 0.007;
constexpr double kFlatness = 0.002;  ///< A top is flat within this share of its height.

constexpr std::array<std::string_view, 11> kWords{"interrupted", "rate",    "silent",   "no-speech",
                                                  "cut-start",   "cut-end", "short",    "clipped",
                                                  "soft",        "noisy",   "too-alike"};
static_assert(kWords.size() == static_cast<std::size_t>(Verdict::kTooAlike) + 1);

std::vector<float> PowersOfRoom(const TakeBlocks& blocks, const TakeSpeech& speech) {
  std::vector<float> powers;
  for (std::size_t i = 0; i < blocks.Count(); ++i) {
    if (!speech.Has(i)) {
      powers.push_back(blocks.Get()[i].power);
    }
  }
  return powers;
}

double SnrDb(const TakeBlocks& blocks, const TakeSpeech& speech) {
  double sum = 0;
  for (std::size_t i = 0; i < blocks.Count(); ++i) {
    sum += speech.Has(i) ? double{blocks.Get()[i].power} : 0;
  }
  constexpr double kLeastRoom = 0.05;  // Of a digitally silent one.
  std::vector<float> room = PowersOfRoom(blocks, speech);
  const auto active = static_cast<double>(std::max<std::size_t>(blocks.Count() - room.size(), 1));
  const double quiet =
      room.empty() ? kLeastRoom : Quantile(std::move(room), kRoomLevel) + kLeastRoom;
  return std::max(10 * std::log10(std::max(sum / active - quiet, quiet) / quiet), 0.0);
}

/// Calls `use` with each sample of the speech.
template <typename Use>
void ForSpeech(std::span<const std::int16_t> samples, const TakeBlocks& blocks,
               const TakeSpeech& speech, const Use& use) {
  for (std::size_t block = 0; block < blocks.Count(); ++block) {
    if (speech.Has(block)) {
      for (const std::int16_t sample :
           samples.subspan(block * blocks.SamplesOfBlock(), blocks.SamplesOfBlock())) {
        use(sample);
      }
    }
  }
}

/// Counts samples that stay at one height, two or more in a row.
class FlatTop {
 public:
  FlatTop(int extreme, double slack) : m_extreme(extreme), m_slack(slack) {}

  void Take(int sample) {
    const bool isAtTop = std::abs(sample - m_extreme) <= m_slack;
    m_run = isAtTop ? m_run + 1 : 0;
    m_flat += m_run == 2 ? 2U : m_run > 2 ? 1U : 0U;
  }
  [[nodiscard]] std::size_t Flat() const { return m_flat; }

 private:
  int m_extreme;
  double m_slack;
  std::size_t m_run = 0;
  std::size_t m_flat = 0;
};

// A voice hardly ever reaches the same height twice. So samples in a row at the very top were cut
// off there, however far the take was turned down afterwards; rounding moves them by a step. Both
// ends count, as an offset can make one of them clip alone.
double FlatShare(std::span<const std::int16_t> samples, const TakeBlocks& blocks,
                 const TakeSpeech& speech) {
  int highest = -32768;
  int lowest = 32767;
  std::size_t total = 0;
  ForSpeech(samples, blocks, speech, [&](int sample) {
    highest = std::max(highest, sample);
    lowest = std::min(lowest, sample);
    ++total;
  });
  const double slack = std::max(1.0, kFlatness * (highest - lowest) / 2);
  FlatTop top(highest, slack);
  FlatTop bottom(lowest, slack);
  ForSpeech(samples, blocks, speech, [&](int sample) {
    top.Take(sample);
    bottom.Take(sample);
  });
  return total == 0 ? 0
                    : static_cast<double>(top.Flat() + bottom.Flat()) / static_cast<double>(total);
}

/// `peak` is the largest distance of a sample from the offset.
double ToDb(double peak) {
  return peak > 0 ? std::clamp(20 * std::log10(peak / kFullScale), kLowestPeakDb, 0.0)
                  : kLowestPeakDb;
}

double PeakDb(const TakeBlocks& blocks, const TakeSpeech& speech) {
  float peak = 0;
  for (std::size_t i = 0; i < blocks.Count(); ++i) {
    if (!speech.IsThere() || speech.Has(i)) {
      peak = std::max(peak, blocks.Get()[i].peak);
    }
  }
  return ToDb(peak);
}

/// What is wrong with a take in which nobody speaks. A muted device may click, and a short sound
/// may be the rest of a word, so there can be several verdicts.
void JudgeNoise(const TakeBlocks& blocks, const TakeSpeech& speech, TakeQuality& quality) {
  const std::vector<float> room = PowersOfRoom(blocks, speech);
  const bool isSilent = blocks.Count() == 0 || speech.UpperLevel() <= kSilentLevel;
  if (isSilent) {
    quality.Add(Verdict::kSilent);
  }
  if (!isSilent || room.size() < blocks.Count()) {
    quality.Add(Verdict::kNoSpeech);
  }
  if (speech.HasFragment()) {
    quality.Add(Verdict::kShort);
  }
  if (!room.empty() && LevelDb(Quantile(room, 0.5F)) > kLoudRoomDb) {
    quality.Add(Verdict::kNoisy);
  }
}

void JudgeSpeech(const Take& take, const TakeBlocks& blocks, const TakeSpeech& speech,
                 TakeQuality& quality) {
  quality.snrDb = SnrDb(blocks, speech);
  const std::array<std::pair<Verdict, bool>, 6> answers{{
      {Verdict::kCutStart, speech.IsCut(false)},
      {Verdict::kCutEnd, speech.IsCut(true)},
      {Verdict::kShort, speech.CountLoud() <= kShortBlocks},
      {Verdict::kClipped, FlatShare(take.samples, blocks, speech) >= kClippedShare},
      {Verdict::kSoft, quality.peakDb < kSoftPeakDb},
      {Verdict::kNoisy, quality.snrDb < kNoisyDb},
  }};
  for (const auto& [verdict, isSo] : answers) {
    if (isSo) {
      quality.Add(verdict);
    }
  }
}

}  // namespace

std::string_view ToWord(Verdict verdict) { return kWords[static_cast<std::size_t>(verdict)]; }

void TakeQuality::Add(Verdict verdict) {
  const auto place = std::ranges::lower_bound(verdicts, verdict);
  if (place == verdicts.end() || *place != verdict) {
    verdicts.insert(place, verdict);
  }
}

double PeakDb(std::span<const std::int16_t> samples) {
  int peak = 0;
  for (const std::int16_t sample : samples) {
    peak = std::max(peak, std::abs(int{sample}));
  }
  return ToDb(peak);
}

TakeQuality WithoutSamples(Verdict verdict) {
  constexpr double kUnknown = std::numeric_limits<double>::quiet_NaN();
  return {.verdicts = {verdict}, .peakDb = kUnknown, .snrDb = kUnknown};
}

TakeQuality JudgeTake(const Take& take) {
  TakeQuality quality;
  if (take.isInterrupted) {
    quality.Add(Verdict::kInterrupted);
  }
  if (take.rate != kSamplesPerSecond) {
    quality.Add(Verdict::kRate);
  }
  const TakeBlocks blocks(take.samples, take.rate);
  const TakeSpeech speech(blocks);
  quality.peakDb = PeakDb(blocks, speech);
  if (speech.IsThere()) {
    JudgeSpeech(take, blocks, speech, quality);
  } else {
    JudgeNoise(blocks, speech, quality);
  }
  return quality;
}

}  // namespace voicemath
