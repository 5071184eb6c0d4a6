#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace voicemath {

/// A run of samples, both ends included.
struct Segment {
  std::uint32_t first = 0;
  std::uint32_t last = 0;

  friend bool operator==(const Segment&, const Segment&) = default;
};

/// Finds the spoken part from the envelope of the whole recording, one value for each block and
/// none negative, which is smoothed, cleared of noise and left so in place. `totalSamples` is the
/// length of the recording. Nothing where the envelope shows no speech; the whole recording is then
/// to be kept.
[[nodiscard]] std::optional<Segment> LocateSpeech(std::span<std::int16_t> envelope,
                                                  std::uint32_t totalSamples);

}  // namespace voicemath
