#include "voicemath/take_speech.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>

namespace voicemath {
namespace {

// Limits, in blocks of 10 ms and in decibels. docs/quality.md says what they were chosen by.
constexpr float kSmallestPower = 0.1F;  ///< Less than that of a sample that is now 0 and now 1.

constexpr float kRoomShare = 0.1F;
constexpr float kRoomSwing = 4;  ///< So far the room rises above its quietest part by itself.
constexpr float kMostRise = 30;  ///< More above the room says no more.

constexpr float kVoicedRise = 3;    ///< A voice is so far above the room,
constexpr float kVoicing = 0.5F;    ///< repeats itself at least so much,
constexpr float kVoicedDepth = 12;  ///< and is so far below its loudest block at most.
constexpr float kActiveRise = 2;    ///< Other speech is so far above the room,
constexpr float kActiveDepth = 22;  ///< and so far below the loudest voiced block at most.

constexpr std::size_t kClickBlocks = 5;  ///< A click seems no longer.

constexpr float kSteadyLevel = 3.5F;  ///< A held level changes no more in two blocks.
constexpr std::size_t kFewestSteady = 3;
constexpr std::size_t kFewestVoiced = 3;
constexpr std::size_t kWordBlocks = 11;  ///< A knock sounds no longer.
/// Of the active blocks at least so many are voiced; more are in noise now and then by chance.
constexpr float kVoicedShare = 0.07F;

constexpr std::size_t kToneStep = 4;  ///< In so many blocks the spectrum of a tone moves
constexpr float kToneDrift = 0.05F;   ///< its middle by less than this share, mostly,
constexpr float kToneMove = 0.003F;   ///< and less than this share from one band to another.

constexpr std::size_t kFewestPeriods = 8;
constexpr float kHeldPitch = 0.0012F;  ///< By less than this share moves the pitch of a hum.

constexpr std::size_t kWhisperBlocks = 20;
constexpr float kWhisperMove = 1.3F;  ///< Decibels that the bands move against each other.
constexpr std::size_t kMoveEdge = 4;  ///< Blocks at both ends of a sound, which swells and dies.

constexpr float kLoudDepth = 14;

constexpr std::size_t kEdgeBlocks = 3;
constexpr float kEdgeRise = 3;
constexpr float kEdgeDepth = 25;      ///< How far below the loudest block cut speech can begin,
constexpr std::size_t kEdgeRun = 5;   ///< if it goes on so long,
constexpr float kEdgeRunDepth = 12;   ///< and gets so loud.
constexpr float kEdgeLoudDepth = 18;  ///< If it is so loud at once it may also be shorter.

/// Mean of each value and `reach` ones on both sides.
std::vector<float> Smoothed(const std::vector<float>& values, std::size_t reach) {
  std::vector<float> means(values.size());
  for (std::size_t i = 0; i < values.size(); ++i) {
    const std::size_t first = i - std::min(i, reach);
    const std::size_t last = std::min(i + reach, values.size() - 1);
    for (std::size_t k = first; k <= last; ++k) {
      means[i] += values[k] / static_cast<float>(last - first + 1);
    }
  }
  return means;
}

std::vector<float> PowersOf(const TakeBlocks& blocks, std::size_t band) {
  std::vector<float> powers;
  powers.reserve(blocks.Count());
  for (const TakeBlock& block : blocks.Get()) {
    powers.push_back(block.bands[band]);
  }
  return powers;
}

float ShareOf(const TakeBlock& block, std::size_t band) {
  float sum = 0;
  for (const float power : block.bands) {
    sum += power;
  }
  return sum > 0 ? block.bands[band] / sum : 0;
}

float Deviation(const std::vector<float>& values) {
  float sum = 0;
  float squares = 0;
  for (const float value : values) {
    sum += value;
    squares += value * value;
  }
  const auto count = static_cast<float>(values.size());
  return std::sqrt(std::max(squares / count - sum / count * (sum / count), 0.0F));
}

}  // namespace

float LevelDb(float power) { return 10 * std::log10(power + kSmallestPower); }

float Quantile(std::vector<float> values, float share) {
  const auto place =
      values.begin() + static_cast<std::ptrdiff_t>(share * static_cast<float>(values.size()));
  std::nth_element(values.begin(), place, values.end());
  return *place;
}

TakeSpeech::TakeSpeech(const TakeBlocks& blocks) : m_blocks(blocks) {
  if (m_blocks.Count() == 0) {
    return;
  }
  MeasureLoudness();
  FindVoiced();
  MarkActive();
  FindEvidence();
  m_isThere = IsVoice() ? !IsTone() && !IsHum() : FindWhisper();
}

void TakeSpeech::AddBand(const std::vector<float>& powers, float room, Loudness& loudness) const {
  loudness.level.resize(powers.size());
  loudness.rise.resize(powers.size());
  for (std::size_t i = 0; i < powers.size(); ++i) {
    loudness.level[i] += powers[i];
    loudness.rise[i] += std::clamp(LevelDb(powers[i]) - room, 0.0F, kMostRise) / kTakeBands;
  }
}

// Each band has a room of its own, since hum fills the lowest one and hiss the highest. How far a
// block rises above the room is the mean of its bands.
void TakeSpeech::MeasureLoudness() {
  for (std::size_t band = 0; band < kTakeBands; ++band) {
    const std::vector<float> single = PowersOf(m_blocks, band);
    const std::vector<float> smooth = Smoothed(single, 1);
    const float room = LevelDb(Quantile(smooth, kRoomShare)) + kRoomSwing;
    AddBand(smooth, room, m_smooth);
    AddBand(single, room, m_single);
  }
  std::ranges::transform(m_smooth.level, m_smooth.level.begin(), LevelDb);
  std::ranges::transform(m_single.level, m_single.level.begin(), LevelDb);
}

// In two passes. Soft noise repeats itself by chance now and then. So the loudest voiced block is
// found first, and what is far below it is dropped.
void TakeSpeech::FindVoiced() {
  const std::size_t count = m_blocks.Count();
  m_isVoiced.assign(count, false);
  m_periods.assign(count, 0);
  m_loudest = LevelDb(0);
  for (std::size_t i = 0; i < count; ++i) {
    if (m_smooth.rise[i] < kVoicedRise) {
      continue;
    }
    const Voicing voicing = m_blocks.VoicingAt(i);
    m_isVoiced[i] = voicing.share >= kVoicing;
    m_periods[i] = voicing.period;
    if (m_isVoiced[i]) {
      m_loudest = std::max(m_loudest, m_smooth.level[i]);
    }
  }
  for (std::size_t i = 0; i < count; ++i) {
    m_isVoiced[i] = m_isVoiced[i] && m_smooth.level[i] >= m_loudest - kVoicedDepth;
  }
}

void TakeSpeech::MarkActive() {
  m_isActive.assign(m_blocks.Count(), false);
  for (std::size_t i = 0; i < m_isActive.size(); ++i) {
    m_isActive[i] =
        m_smooth.rise[i] >= kActiveRise && m_smooth.level[i] >= m_loudest - kActiveDepth;
  }
  DropClicks();
}

/// Takes away short sounds that are not voiced: clicks, smacking lips.
void TakeSpeech::DropClicks() {
  for (std::size_t first = 0, i = 0; i <= m_isActive.size(); ++i) {
    if (i < m_isActive.size() && m_isActive[i]) {
      continue;
    }
    const auto begin = static_cast<std::ptrdiff_t>(first);
    const auto end = static_cast<std::ptrdiff_t>(i);
    if (i - first <= kClickBlocks &&
        std::none_of(m_isVoiced.begin() + begin, m_isVoiced.begin() + end, std::identity())) {
      std::fill(m_isActive.begin() + begin, m_isActive.begin() + end, false);
    }
    first = i + 1;
  }
}

void TakeSpeech::FindEvidence() {
  std::size_t run = 0;
  std::size_t steady = 0;
  const std::vector<float>& level = m_smooth.level;
  for (std::size_t i = 0; i < level.size(); ++i) {
    const float change =
        level[std::min(i + 1, level.size() - 1)] - level[i - std::min<std::size_t>(i, 1)];
    m_found.voiced += m_isVoiced[i] ? 1U : 0U;
    m_found.active += m_isActive[i] ? 1U : 0U;
    run = m_isActive[i] ? run + 1 : 0;
    steady = m_isVoiced[i] && std::abs(change) <= kSteadyLevel ? steady + 1 : 0;
    m_found.longest = std::max(m_found.longest, run);
    m_found.steady = std::max(m_found.steady, steady);
  }
}

bool TakeSpeech::IsVoice() const {
  const bool isHeld = m_found.steady >= kFewestSteady ||
                      (m_found.longest >= kWordBlocks && m_found.voiced >= kFewestVoiced);
  return isHeld &&
         static_cast<float>(m_found.voiced) >= kVoicedShare * static_cast<float>(m_found.active);
}

/// Middle of the spectrum around a block: 0 to pi, which is half the rate.
float TakeSpeech::Brightness(std::size_t block) const {
  float power = 0;
  float slope = 0;
  const std::size_t last = std::min(block + 1, m_blocks.Count() - 1);
  for (std::size_t i = block - std::min<std::size_t>(block, 1); i <= last; ++i) {
    power += m_blocks.Get()[i].power;
    slope += m_blocks.Get()[i].slope;
  }
  return power > 0 ? std::acos(std::clamp(slope / power, -1.0F, 1.0F)) : 0;
}

// Looks at pairs of voiced blocks that are kToneStep apart. A mouth hardly ever stands still for
// so long: the middle of the spectrum drifts, or the bands change their shares.
bool TakeSpeech::IsTone() const {
  std::vector<float> drifts;
  std::vector<float> moves;
  for (std::size_t i = kToneStep; i < m_blocks.Count(); ++i) {
    if (!m_isVoiced[i] || !m_isVoiced[i - kToneStep]) {
      continue;
    }
    const float before = Brightness(i - kToneStep);
    drifts.push_back(before > 0 ? std::abs(Brightness(i) / before - 1) : 0);
    float move = 0;
    for (std::size_t band = 0; band < kTakeBands; ++band) {
      const float share = ShareOf(m_blocks.Get()[i], band);
      move = std::max(move, std::abs(share - ShareOf(m_blocks.Get()[i - kToneStep], band)));
    }
    moves.push_back(move);
  }
  return !drifts.empty() && Quantile(std::move(drifts), 0.8F) < kToneDrift &&
         Quantile(std::move(moves), 0.5F) < kToneMove;
}

// The pitch of a voice moves all the time, and that of a hum never does. Now and then a period is
// taken for a few of them.
bool TakeSpeech::IsHum() const {
  std::vector<float> periods;
  for (std::size_t i = 0; i < m_periods.size(); ++i) {
    if (m_isVoiced[i] && m_periods[i] > 0) {
      periods.push_back(m_periods[i]);
    }
  }
  if (periods.size() < kFewestPeriods) {
    return false;
  }
  const float usual = Quantile(periods, 0.5F);
  for (float& period : periods) {
    const float times = std::max(period, usual) / std::min(period, usual);
    period = std::abs(times / std::round(times) - 1);
  }
  return Quantile(std::move(periods), 0.75F) < kHeldPitch;
}

/// Returns how far the bands move against each other, in decibels, from `first` up to before
/// `last`.
float TakeSpeech::Movement(std::size_t first, std::size_t last) const {
  std::array<std::vector<float>, kTakeBands> levels;
  for (std::size_t band = 0; band < kTakeBands; ++band) {
    levels[band] = Smoothed(PowersOf(m_blocks, band), 3);
    std::ranges::transform(levels[band], levels[band].begin(), LevelDb);
  }
  float movement = 0;
  for (std::size_t band = 0; band < kTakeBands; ++band) {
    std::vector<float> heights;
    for (std::size_t i = first + kMoveEdge; i + kMoveEdge < last; ++i) {
      // Against the mean of all bands: a sound that only becomes louder or softer does not move.
      float mean = 0;
      for (const auto& each : levels) {
        mean += each[i] / kTakeBands;
      }
      heights.push_back(levels[band][i] - mean);
    }
    movement += Deviation(heights) / kTakeBands;
  }
  return movement;
}

bool TakeSpeech::FindWhisper() {
  // Without a voice the loudest block of all is the measure of what belongs to the speech. If it is
  // no whisper either, the marks are again those of what came nearest to speech.
  const float loudestVoiced = m_loudest;
  m_loudest = *std::ranges::max_element(m_smooth.level);
  MarkActive();
  for (std::size_t first = 0, i = 0; i <= m_isActive.size(); ++i) {
    if (i < m_isActive.size() && m_isActive[i]) {
      continue;
    }
    if (i - first >= kWhisperBlocks && Movement(first, i) >= kWhisperMove) {
      return true;
    }
    first = i + 1;
  }
  m_loudest = loudestVoiced;
  MarkActive();
  return false;
}

std::size_t TakeSpeech::CountLoud() const {
  std::size_t loud = 0;
  for (std::size_t i = 0; i < m_single.level.size(); ++i) {
    const bool isLoud =
        m_single.rise[i] >= kActiveRise && m_single.level[i] >= m_loudest - kLoudDepth;
    loud += isLoud ? 1U : 0U;
  }
  return loud;
}

bool TakeSpeech::HasFragment() const { return m_found.voiced > 1 && m_found.longest < kWordBlocks; }

bool TakeSpeech::IsCut(bool fromEnd) const {
  const std::size_t count = m_blocks.Count();
  std::size_t run = 0;
  // Goes inwards from the edge. One block that is too soft may be between two that are not.
  std::size_t loud = 0;  // Of the first blocks.
  float loudest = LevelDb(0);
  for (std::size_t i = 0; i < count && i <= run + 1; ++i) {
    const std::size_t block = fromEnd ? count - 1 - i : i;
    const float level = m_single.level[block];
    if (m_single.rise[block] >= kEdgeRise && level >= m_loudest - kEdgeDepth) {
      run = i + 1;
      loudest = std::max(loudest, level);
      loud += i < kEdgeBlocks && level >= m_loudest - kEdgeLoudDepth ? 1U : 0U;
    }
  }
  return (run >= kEdgeRun && loudest >= m_loudest - kEdgeRunDepth) || loud == kEdgeBlocks;
}

}  // namespace voicemath
