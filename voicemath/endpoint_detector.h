#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "voicemath/constants.h"

// How the speech is found in a recording.
//
// 1. The recording is reduced to an envelope: for each block of 10 ms, how far a sample is from the
//    block's mean at most. So a second is a hundred numbers (two hundred, as the blocks overlap),
//    and neither an offset of the microphone nor slow hum is left in them.
// 2. The envelope is smoothed over 15 blocks, so that a click is not the peak. Its peak says about
//    where the speech is, and its commonest low value how loud the room is. The room is taken off.
// 3. The envelope is cut at half its height. One loud syllable then counts no more than the others,
//    and its centre of mass, a second to either side of the peak, is about the middle of the name.
// 4. How long the speech goes on from that middle to either side is the mass there, divided by the
//    height of the cut, and a little. So no threshold decides that a soft end is no speech any
//    more, and a click far from the name adds next to nothing.
// 5. A margin is kept before and after, for what is softer than the noise.

namespace voicemath {

/// Returns the largest distance of a sample from the mean of its block, as a signed 16-bit value.
[[nodiscard]] std::int16_t BlockEnvelope(std::span<const std::int16_t, kBlockSamples> block);

/// Measures many blocks. Each begins kBlockStep samples after the one before. `envelope` gets a
/// value for each, and `samples` has one step more than there are blocks.
void MeasureEnvelope(std::span<const std::int16_t> samples, std::span<std::int16_t> envelope);

/// A run of samples, both ends included.
struct Segment {
  std::uint32_t first = 0;
  std::uint32_t last = 0;

  friend bool operator==(const Segment&, const Segment&) = default;
};

/// The blocks at both ends of the speech, without the margins that are kept around it.
struct SpeechBlocks {
  std::int64_t left = 0;
  std::int64_t right = 0;

  /// Returns whether 16 bits hold both numbers. ToSegment goes on in 16 bits, so if they do not,
  /// its segment is not that of the speech. That is so for speech that ends with block 32,768 or
  /// later, at sample 1,802,240 (163.5 s) or later.
  [[nodiscard]] bool HavePlace() const;
};

/// Finds the speech in the envelope of the whole recording. The envelope has one value for each
/// block, none of them negative. It is smoothed and cleared of noise in place. Returns nothing if
/// it shows no speech; the whole recording is then to be kept.
[[nodiscard]] std::optional<SpeechBlocks> FindSpeech(std::span<std::int16_t> envelope);

/// Returns the samples of the speech with its margins, of a recording of `totalSamples`. Returns
/// nothing if they end before they begin; the whole recording is then to be kept.
[[nodiscard]] std::optional<Segment> ToSegment(const SpeechBlocks& speech,
                                               std::uint32_t totalSamples);

/// Does both steps at once.
[[nodiscard]] std::optional<Segment> LocateSpeech(std::span<std::int16_t> envelope,
                                                  std::uint32_t totalSamples);

}  // namespace voicemath
