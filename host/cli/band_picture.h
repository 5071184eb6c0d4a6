#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace cli {

/// What a picture is drawn with: block characters, or letters and signs of ASCII.
enum class PictureStyle : std::uint8_t { kBlocks, kAscii };

/// Returns the bands of a template over time, a line each, the highest band first. `values` holds
/// kBandCount for each frame, frame after frame. Every band is drawn against its own maximum. If
/// there are more than `columns` frames, neighbouring frames share a column, which shows the
/// largest of their values.
[[nodiscard]] std::vector<std::string> DrawBands(std::span<const float> values, std::size_t columns,
                                                 PictureStyle style);

/// Prints these lines, in the characters that the terminal can show.
void PrintPicture(std::span<const float> values);

/// Returns "1 frame", or the count with "frames".
[[nodiscard]] std::string CountFrames(std::int32_t frames);

}  // namespace cli
