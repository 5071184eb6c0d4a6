#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <span>
#include <vector>

namespace support {

/// 16-bit samples, 11,025 of them a second.
using Samples = std::vector<std::int16_t>;

[[nodiscard]] Samples Constant(std::size_t count, std::int16_t value);

/// `high` for `halfPeriod` samples, then `low` for as many, and so on.
[[nodiscard]] Samples Square(std::size_t count, std::size_t halfPeriod, std::int16_t high,
                             std::int16_t low);

/// Zeros, but for one sample of `height` every `period` samples, the first at `start`.
[[nodiscard]] Samples Impulses(std::size_t count, std::size_t start, std::size_t period,
                               std::int16_t height);

/// A sine at `bin` of the 1,024-point transform, which need not be a whole number.
[[nodiscard]] Samples Tone(std::size_t count, double bin, double amplitude);

/// A sine that rises evenly from one bin to the other.
[[nodiscard]] Samples Sweep(std::size_t count, double fromBin, double toBin, double amplitude);

/// Even white noise within plus and minus `amplitude`. The same everywhere: the raw integers of the
/// generator are used, since the library's distributions differ from one library to another.
[[nodiscard]] Samples Noise(std::size_t count, int amplitude, std::uint32_t seed);

/// Harmonics of a gliding voice, swelling and fading syllable by syllable, over a little noise.
[[nodiscard]] Samples SpeechLike(std::size_t count, double amplitude, std::uint32_t seed);

/// Nearly every sample -32,768 or 32,767, in runs of random length, so that the distance of a
/// sample from the mean of its block goes beyond 32,767.
[[nodiscard]] Samples Extremes(std::size_t count, std::uint32_t seed);

/// Adds `what` to `base` from sample `at` on, limited to 16 bits, as far as `base` goes.
[[nodiscard]] Samples Mixed(Samples base, std::size_t at, const Samples& what);

/// A whole number from 0 to `below` - 1.
[[nodiscard]] std::uint32_t Draw(std::mt19937& random, std::uint32_t below);

using Bytes = std::vector<std::byte>;

[[nodiscard]] Bytes BytesOf(std::span<const std::int16_t> samples);

/// A wave file with the header that the recorder writes: 44 bytes, then the samples. The size
/// after "RIFF" is that of the whole file.
[[nodiscard]] Bytes WaveFile(std::span<const std::int16_t> samples);

/// A wave file whose "data" id stands at `idOffset` (36 to 96, or 12 or 24, where a field that
/// nobody looks at is given up for it), and claims `dataBytes`; `content` follows.
[[nodiscard]] Bytes WaveFileWithDataAt(std::size_t idOffset, std::uint32_t dataBytes,
                                       const Bytes& content);

}  // namespace support
