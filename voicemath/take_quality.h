#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "voicemath/constants.h"

namespace voicemath {

/// What can be wrong with a recording of a spoken name, what hinders most first.
enum class Verdict : std::uint8_t {
  kInterrupted,  ///< The device was lost before the recording was whole.
  kRate,         ///< It has not the form of the recorder: 11,025 samples a second, mono, 16 bits.
  kSilent,       ///< Zeros, an offset, a muted microphone.
  kNoSpeech,     ///< Noise, hum, clicks.
  kCutStart,     ///< The speech began before the recording.
  kCutEnd,       ///< The speech went on after the recording.
  kShort,        ///< Too little speech for a name.
  kClipped,      ///< The speech stands at a flat top.
  kSoft,
  kNoisy,     ///< The speech is hardly louder than the room.
  kTooAlike,  ///< The dialer may take it for a tag of another number.
};

/// Returns a short name that scripts can rely on.
[[nodiscard]] std::string_view ToWord(Verdict verdict);

/// How good a recording is as a voice tag.
struct TakeQuality {
  std::vector<Verdict> verdicts;  ///< In the order of the enumeration; empty for a good take.
  /// Largest distance from the offset, of the speech if there is any, in decibels of full scale. It
  /// is not below kLowestPeakDb.
  double peakDb = 0;
  /// How far the speech is above the room, in decibels; 0 if there is none.
  double snrDb = 0;

  /// Adds a verdict at its place. Does nothing if it is there.
  void Add(Verdict verdict);
};

/// The peak of digital silence: half a step of 16 bits.
inline constexpr double kLowestPeakDb = -96.3;

/// Returns the largest sample in decibels of full scale, down to kLowestPeakDb.
[[nodiscard]] double PeakDb(std::span<const std::int16_t> samples);

/// A recording that is to be judged.
struct Take {
  std::span<const std::int16_t> samples;
  std::uint32_t rate = kSamplesPerSecond;  ///< As its header says.
  bool isInterrupted = false;              ///< The device was lost while it was made.
};

/// Judges a recording, be it whole or cut by LearnFile, which leaves 0.3 s of the room around the
/// speech. Gives every verdict but kTooAlike, which takes other tags. A pure function.
[[nodiscard]] TakeQuality JudgeTake(const Take& take);

/// Returns the judgement on a recording whose samples are not known: this verdict, and neither peak
/// nor distance from the room (NaN).
[[nodiscard]] TakeQuality WithoutSamples(Verdict verdict);

}  // namespace voicemath
