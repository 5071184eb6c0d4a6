#include "voicemath/take_quality.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <numeric>
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

/// A crowded top: so many samples, as a share of the speech, are between `kNearTop` of a height and
/// the height, and so many times as many as between `kBelowTop` and there.
constexpr double kCrowdedShare = 0.01;
constexpr double kNearTop = 0.82;
constexpr double kBelowTop = 0.64;
constexpr double kFewBelow = 0.003;  ///< Is added to the lower share, which can be next to nothing.
struct CrowdedTop {
  double height;  ///< Of the extreme: ripples rise above the level at which was clipped.
  double factor;
};
constexpr std::array<CrowdedTop, 3> kCrowdedTops{{{1, 1.1}, {0.92, 1.9}, {0.85, 2.3}}};

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

/// How many samples of one sign reach which height.
class Heights {
 public:
  Heights(double offset, double extreme) : m_offset(offset), m_reach(extreme - offset) {}

  void Take(int sample) {
    const double height = m_reach == 0 ? 0 : (sample - m_offset) / m_reach;
    if (height >= 0) {
      ++m_counts[std::min(static_cast<std::size_t>(height * kSteps), kSteps)];
    }
  }

  /// Returns whether there are more of the `total` samples near the top than a little below it.
  [[nodiscard]] bool IsCrowded(std::size_t total) const {
    return std::ranges::any_of(kCrowdedTops, [&](const CrowdedTop& top) {
      const double near = Share(kNearTop * top.height, total);
      const double below = Share(kBelowTop * top.height, total) - near;
      return near >= kCrowdedShare && near >= top.factor * (below + kFewBelow);
    });
  }

 private:
  static constexpr std::size_t kSteps = 1000;

  /// Of the samples that reach this height.
  [[nodiscard]] double Share(double height, std::size_t total) const {
    const auto from = static_cast<std::ptrdiff_t>(height * kSteps);
    return static_cast<double>(
               std::accumulate(m_counts.begin() + from, m_counts.end(), std::size_t{0})) /
           static_cast<double>(std::max<std::size_t>(total, 1));
  }

  double m_offset;
  double m_reach;
  std::array<std::size_t, kSteps + 1> m_counts{};
};

// A device may clip at one rate and deliver another one. That rounds the flat tops off, and they
// ripple. But still the samples crowd near the top, and those of a voice thin out towards it.
bool HasCrowdedTop(std::span<const std::int16_t> samples, const TakeBlocks& blocks,
                   const TakeSpeech& speech) {
  double sum = 0;
  std::size_t total = 0;
  int highest = -32768;
  int lowest = 32767;
  ForSpeech(samples, blocks, speech, [&](int sample) {
    sum += sample;
    ++total;
    highest = std::max(highest, sample);
    lowest = std::min(lowest, sample);
  });
  const double offset = sum / static_cast<double>(std::max<std::size_t>(total, 1));
  Heights above(offset, highest);
  Heights below(offset, lowest);
  ForSpeech(samples, blocks, speech, [&](int sample) {
    above.Take(sample);
    below.Take(sample);
  });
  return above.IsCrowded(total) || below.IsCrowded(total);
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
      {Verdict::kCutEnd, speech.IsCut(true) && !take.isInterrupted},
      {Verdict::kShort, speech.CountLoud() <= kShortBlocks},
      {Verdict::kClipped, FlatShare(take.samples, blocks, speech) >= kClippedShare ||
                              HasCrowdedTop(take.samples, blocks, speech)},
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
