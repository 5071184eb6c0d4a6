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

/// The blocks at both ends of the speech, without the margins that are kept around it.
struct SpeechBlocks {
  std::int64_t left = 0;
  std::int64_t right = 0;

  /// Whether 16 bits hold both numbers. ToSegment goes on in 16 bits; if they do not hold them, its
  /// segment is not that of the speech. That is so for speech that ends with block 32,768 or later,
  /// at sample 1,802,240 (163.5 s) or later.
  [[nodiscard]] bool HavePlace() const;
};

/// Finds the speech in the envelope of the whole recording, one value for each block and none
/// negative, which is smoothed, cleared of noise and left so in place. Returns nothing if the
/// envelope shows no speech; the whole recording is then to be kept.
[[nodiscard]] std::optional<SpeechBlocks> FindSpeech(std::span<std::int16_t> envelope);

/// The samples of the speech with its margins, of a recording of `totalSamples`. Returns nothing if
/// they end before they begin; the whole recording is then to be kept.
[[nodiscard]] std::optional<Segment> ToSegment(const SpeechBlocks& speech,
                                               std::uint32_t totalSamples);

/// Both steps at once.
[[nodiscard]] std::optional<Segment> LocateSpeech(std::span<std::int16_t> envelope,
                                                  std::uint32_t totalSamples);

}  // namespace voicemath
