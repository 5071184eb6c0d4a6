#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace cli {

enum class PictureStyle { kBlocks, kAscii };

/// Block characters where the terminal's character set is UTF-8, else ASCII.
[[nodiscard]] PictureStyle ChoosePictureStyle();

/// The bands of a template over time, a line each, the highest band first: `values` frame-major,
/// kBandCount a frame. Every band is drawn against its own maximum. Templates of more than
/// `columns` frames are drawn with the largest value of neighbouring frames in each column.
[[nodiscard]] std::vector<std::string> DrawBands(std::span<const float> values, std::size_t columns,
                                                 PictureStyle style);

}  // namespace cli
