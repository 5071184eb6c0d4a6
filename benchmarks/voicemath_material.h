#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "tests/support/signals.h"
#include "tests/voicemath/twins/features.h"
#include "voicemath/vector_clones.h"

namespace benchmarks {

inline constexpr std::size_t kThreeSeconds = 33075;
inline constexpr std::size_t kFrames = 63;  ///< Of three seconds.
inline constexpr std::size_t kTags = 100;
inline constexpr std::size_t kFramesTogether = voicemath::kFrameLanes;  ///< Of one transform.
inline constexpr std::size_t kLoudSample = 10000;  ///< The first of them begins in the word.

/// Three seconds of noise with a word in them: a tone that swells and fades three times.
[[nodiscard]] support::Samples Utterance();

/// What the template of a spoken word looks like: syllables that swell and fade in each band, and
/// noise. Made without a transform, which would take a machine without floating-point unit minutes.
[[nodiscard]] twins::Template Word(std::size_t frames, std::uint32_t seed);

/// Words of 20 to 62 frames, one for each of kTags tags.
[[nodiscard]] std::vector<twins::Template> Vocabulary();

/// The templates of a hundred names as a voice says them, whole or first names only.
[[nodiscard]] const std::vector<twins::Template>& FullNames();
[[nodiscard]] const std::vector<twins::Template>& FirstNames();

/// Lets the compiler believe that somebody looks at the value.
template <typename T>
void Keep(const T& value) {
  asm volatile("" : : "g"(&value) : "memory");
}

}  // namespace benchmarks
