#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "voicemath/endpoint_detector.h"

namespace voicemath {

// What LearnFile would make of a recording that lies in memory and not in a file.

/// Returns the part that LearnFile would keep: the speech, or all samples if no speech is found.
/// There is at least one sample.
[[nodiscard]] Segment FindKeptPart(std::span<const std::int16_t> samples);

/// Returns the template that LearnFile would compute: kBandCount values for each frame. Returns
/// none if the part that it keeps is shorter than a frame.
[[nodiscard]] std::vector<float> ComputeLearnedTemplate(std::span<const std::int16_t> samples);

}  // namespace voicemath
