#pragma once

#include <cstddef>
#include <cstdint>

namespace voicemath {

/// Every recording is taken to hold this many samples per second, whatever its header says.
inline constexpr std::uint32_t kSamplesPerSecond = 11025;

inline constexpr std::size_t kBlockSamples = 110;  ///< One envelope block, 10 ms.
inline constexpr std::size_t kBlockStep = 55;      ///< Blocks overlap by half.

inline constexpr std::size_t kFrameSamples = 1024;  ///< One transform, 93 ms.
inline constexpr std::size_t kFrameHop = 512;       ///< Frames overlap by half.

// The bands of a frame. One bin is 10.77 Hz wide, so they reach from 108 Hz to about 485, 980,
// 1475, 1970 and 2466 Hz: the first two resonances of most vowels, and little of the noise above.
inline constexpr std::size_t kBandCount = 5;
inline constexpr std::size_t kBandBins = 46;      ///< Transform bins summed into one band.
inline constexpr std::size_t kFirstUsedBin = 10;  ///< Lower bins hold hum and offset.
inline constexpr std::size_t kUsedBins = kBandCount * kBandBins;

}  // namespace voicemath
