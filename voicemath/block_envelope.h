#pragma once

#include <cstdint>
#include <span>

#include "voicemath/constants.h"

namespace voicemath {

/// Largest distance of a sample from the mean of its block, as a signed 16-bit value.
[[nodiscard]] std::int16_t BlockEnvelope(std::span<const std::int16_t, kBlockSamples> block);

/// The same of many blocks, each beginning kBlockStep samples after the one before: `envelope` has
/// a value for each, `samples` one more step than there are blocks.
void MeasureEnvelope(std::span<const std::int16_t> samples, std::span<std::int16_t> envelope);

}  // namespace voicemath
