#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "tests/voicemath/twins/wave_header.h"

namespace twins {

/// Largest distance of a sample from the mean of its block of 110.
[[nodiscard]] std::int16_t BlockEnvelope(std::span<const std::int16_t> block);

/// One value for each block of the recording, read block by block.
[[nodiscard]] std::vector<std::int16_t> RawEnvelope(ByteFile& file, const Wave& wave);

/// Everything that the search for the spoken part forms on its way, so that a difference can be
/// traced to the step that makes it. If the search ends early, the later fields are zero.
struct SpeechSearch {
  std::vector<std::int16_t> smoothed;
  std::vector<std::int16_t> cleared;  ///< Without its noise; if the search ends early, smoothed.
  std::int16_t peak = 0;
  std::uint32_t peakBlock = 0;
  std::int16_t binWidth = 0;
  std::array<std::uint32_t, 32> histogram{};
  std::int16_t mode = 0;
  std::int16_t noise = 0;
  std::int16_t clip = 0;
  std::int64_t centre = 0;
  std::int64_t leftMass = 0;
  std::int64_t rightMass = 0;
  std::int16_t left = 0;
  std::int16_t right = 0;
  bool found = false;  ///< Else the whole recording stays selected.
  std::uint32_t firstSample = 0;
  std::uint32_t lastSample = 0;
};

[[nodiscard]] SpeechSearch LocateSpeech(const std::vector<std::int16_t>& envelope,
                                        std::uint32_t dataBytes);

/// Sets the first and the last sample of `wave` to the spoken part.
void DetectSpeechBounds(ByteFile& file, Wave& wave);

}  // namespace twins
