#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "tests/voicemath/twins/features.h"

namespace twins {

/// 0 for the same shape, at most 2.0. `a` counts as the shorter one if both have the same
/// number of frames.
[[nodiscard]] float CompareTemplates(const Template& a, const Template& b);

/// The acceptance distance of each of 100 slots. `stored` holds the slots from 0, at most 100;
/// `count` is what the base takes their number to be, which may be above 100.
[[nodiscard]] std::array<float, 100> AcceptanceDistances(const std::vector<Template>& stored,
                                                         std::int32_t count);

}  // namespace twins
