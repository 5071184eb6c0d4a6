#include "host/cli/band_picture.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include "host/cli/output.h"
#include "host/cli/system.h"
#include "voicemath/constants.h"

// A template as a picture in letters: a line for each band, a column for each moment.
namespace cli {
namespace {

constexpr std::size_t kPictureColumns = 60;
constexpr std::size_t kLevels = 9;
constexpr std::array<std::string_view, kLevels> kBlocks{" ", "▁", "▂", "▃", "▄",
                                                        "▅", "▆", "▇", "█"};
constexpr std::array<std::string_view, kLevels> kAscii{" ", ".", ":", "-", "=", "+", "*", "#", "@"};

double BinToHertz(std::size_t bin) {
  return static_cast<double>(bin) * voicemath::kSamplesPerSecond / voicemath::kFrameSamples;
}

std::string NameBand(std::size_t band) {
  // The lowest bins hold hum and offset, and no band uses them.
  const std::size_t first = std::max(band * voicemath::kBandBins, voicemath::kFirstUsedBin);
  const std::size_t last = (band + 1) * voicemath::kBandBins - 1;
  return fmt::format("{:4.0f} to {:4.0f} Hz", BinToHertz(first), BinToHertz(last));
}

/// The largest value of the band in each column.
std::vector<float> GatherColumns(std::span<const float> values, std::size_t band,
                                 std::size_t columns) {
  const std::size_t frames = values.size() / voicemath::kBandCount;
  const std::size_t count = std::min(frames, columns);
  std::vector<float> gathered(count, 0.0F);
  for (std::size_t frame = 0; frame < frames; ++frame) {
    const float value = values[frame * voicemath::kBandCount + band];
    float& column = gathered[frame * count / frames];
    // A damaged template may hold anything, and is drawn all the same.
    column = std::isfinite(value) ? std::max(column, value) : column;
  }
  return gathered;
}

/// Returns what the character set of the terminal has.
PictureStyle ChoosePictureStyle() {
  return ShowsUtf8() ? PictureStyle::kBlocks : PictureStyle::kAscii;
}

}  // namespace

// The bands of a template differ much in size, and the shape of each over time is what makes two
// names alike. So every band fills its line up to its own maximum. A column shows the largest value
// of its frames and not their mean: a short sound would vanish in a mean.
std::vector<std::string> DrawBands(std::span<const float> values, std::size_t columns,
                                   PictureStyle style) {
  const auto& marks = style == PictureStyle::kBlocks ? kBlocks : kAscii;
  std::vector<std::string> lines;
  // The highest band stands at the top, as in every picture of sound.
  for (std::size_t band = voicemath::kBandCount; band-- > 0;) {
    const std::vector<float> gathered = GatherColumns(values, band, columns);
    const float top = gathered.empty() ? 0.0F : *std::ranges::max_element(gathered);
    std::string line = NameBand(band) + "  ";
    for (const float value : gathered) {
      const double share = top > 0.0F ? static_cast<double>(value) / top : 0.0;
      line += marks[static_cast<std::size_t>(std::lround(share * (kLevels - 1)))];
    }
    lines.push_back(std::move(line));
  }
  return lines;
}

void PrintPicture(std::span<const float> values) {
  for (const std::string& line : DrawBands(values, kPictureColumns, ChoosePictureStyle())) {
    PrintLine("  " + line);
  }
}

std::string CountFrames(std::int32_t frames) {
  return fmt::format("{} {}", frames, frames == 1 ? "frame" : "frames");
}

}  // namespace cli
