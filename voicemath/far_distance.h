#pragma once

#include <cstddef>
#include <span>

#include "voicemath/grid_distance.h"
#include "voicemath/template_distance.h"

namespace voicemath {

/// Whether FarDistance knows the pair, and is worth the memory that it takes.
[[nodiscard]] bool IsFar(const Pair& pair);

/// How many floats FarDistance needs for its work.
[[nodiscard]] std::size_t FarScratchSize(const Pair& pair);

/// The distance of TemplateDistance for a pair that IsFar. The cost of a shift is in proportion to
/// the length of the shorter template, not of the longer one. `scratch` holds FarScratchSize
/// floats.
[[nodiscard]] float FarDistance(const Pair& pair, float bound, std::span<float> scratch,
                                const GoOn& goOn);

}  // namespace voicemath
