#include "voicemath/prepared_template.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <utility>

namespace voicemath {
namespace {

/// Values above this are far beyond the norm's reach. Below it a grid value fits into 15 bits.
constexpr float kLargestShape = 1.25F;

/// Limit of the sum of squares of a grid, twice what a norm of 1 gives. A group of the outline then
/// fits into 16 bits.
constexpr std::int64_t kLargestSquares =
    std::int64_t{2} * PreparedTemplate::kGridSteps * PreparedTemplate::kGridSteps;

/// Reciprocal of the Euclidean norm; 1 for a template that is all zeros or has no frames.
float ReciprocalNorm(std::span<const float> values) {
  float sum = 0.0F;
  for (const float value : values) {
    const float square = value * value;
    sum += square;
  }
  if (sum == 0.0F) {
    return 1.0F;
  }
  const auto norm = static_cast<float>(std::sqrt(static_cast<double>(sum)));
  return 1.0F / norm;
}

/// Nearest point of the grid, a tie going up: never further than half a step. The product with a
/// power of two is exact, and so is the rest.
std::int16_t OnGrid(float shape) {
  const auto halfSteps =
      static_cast<std::int32_t>(shape * static_cast<float>(2 * PreparedTemplate::kGridSteps));
  return static_cast<std::int16_t>((halfSteps + 1) / 2);
}

}  // namespace

bool PreparedTemplate::Prepare(std::span<const float> values) {
  PreparedTemplate made;
  const std::size_t frames = values.size() / kBandCount;
  made.m_frames = static_cast<std::int32_t>(frames);
  made.m_rootOfSize =
      static_cast<std::int32_t>(std::ceil(std::sqrt(static_cast<double>(frames * kBandCount))));
  made.m_bandLength = frames + 2 * kFloatLanes;
  made.m_shape.reset(new (std::nothrow) float[made.m_bandLength * kBandCount]);
  made.m_grid.reset(new (std::nothrow) std::int16_t[frames * kBandCount + kGridBlock]);
  made.m_heldGrid.reset(
      new (std::nothrow)
          std::int16_t[(frames + 2 * std::size_t{kHeldFrames}) * kBandCount + kHeldZeros]);
  made.m_sums.reset(new (std::nothrow) GridSums[frames + 1]);
  made.m_slidRow = frames / kGroupFrames + 2 * std::size_t{kHeldFrames} / kGroupFrames + 2;
  made.m_outline.reset(new (std::nothrow)
                           std::int16_t[frames / kGroupFrames * kBandCount + kGridBlock]);
  made.m_slidOutline.reset(
      new (std::nothrow) std::int16_t[kGroupFrames * made.m_slidRow * kBandCount + kGridBlock]);
  made.m_slidSquares.reset(new (std::nothrow) std::uint32_t[kGroupFrames * made.m_slidRow]);
  if (!made.m_shape || !made.m_grid || !made.m_heldGrid || !made.m_sums || !made.m_outline ||
      !made.m_slidOutline || !made.m_slidSquares) {
    return false;
  }
  if (frames > 0) {
    made.FillShape(values);
    made.m_isOnGrid = made.FillGrid();
  }
  if (made.m_isOnGrid) {
    made.FillHeldGrid();
    made.FillOutline();
  }
  *this = std::move(made);
  return true;
}

void PreparedTemplate::FillShape(std::span<const float> values) {
  const float scale = ReciprocalNorm(values);
  const auto last = static_cast<std::size_t>(m_frames) - 1;
  for (std::size_t band = 0; band < kBandCount; ++band) {
    float* at = m_shape.get() + band * m_bandLength;
    at = std::fill_n(at, kFloatLanes, values[band] * scale);
    for (std::size_t frame = 0; frame <= last; ++frame) {
      *at++ = values[frame * kBandCount + band] * scale;
    }
    std::fill_n(at, kFloatLanes, values[last * kBandCount + band] * scale);
  }
}

bool PreparedTemplate::FillGrid() {
  std::int16_t* at = m_grid.get();
  std::int64_t squares = 0;
  for (std::int32_t frame = 0; frame < m_frames; ++frame) {
    GridSums sums = SumsBefore(frame);
    for (std::size_t band = 0; band < kBandCount; ++band) {
      const float shape = *Shape(band, frame);
      if (!(shape >= 0.0F && shape <= kLargestShape)) {
        return false;
      }
      const std::int32_t value = OnGrid(shape);
      *at++ = static_cast<std::int16_t>(value);
      sums.bands[band] += value;
      squares += std::int64_t{value} * value;
    }
    if (squares > kLargestSquares) {
      return false;
    }
    sums.squares = static_cast<std::int32_t>(squares);
    m_sums[static_cast<std::size_t>(frame) + 1] = sums;
  }
  std::fill_n(at, kGridBlock, std::int16_t{0});
  return true;
}

void PreparedTemplate::FillHeldGrid() {
  std::int16_t* at = m_heldGrid.get();
  for (std::int32_t frame = -kHeldFrames; frame < m_frames + kHeldFrames; ++frame) {
    at = std::copy_n(Grid(std::clamp(frame, 0, m_frames - 1)), kBandCount, at);
  }
  std::fill_n(at, kHeldZeros, std::int16_t{0});
}

void PreparedTemplate::FillOutline() {
  const std::int32_t end = m_frames + kHeldFrames - kGroupFrames;
  for (std::int32_t way = 0; way < kGroupFrames; ++way) {
    std::int16_t* at = m_slidOutline.get() + static_cast<std::size_t>(way) * m_slidRow * kBandCount;
    std::uint32_t* squares = m_slidSquares.get() + static_cast<std::size_t>(way) * m_slidRow;
    std::uint32_t sum = 0;
    for (std::int32_t frame = way - kHeldFrames; frame <= end; frame += kGroupFrames) {
      const std::int16_t* first = HeldGrid(frame);
      *squares++ = sum;
      for (std::size_t band = 0; band < kBandCount; ++band, ++first, ++at) {
        const std::int32_t four =
            first[0] + first[kBandCount] + first[2 * kBandCount] + first[3 * kBandCount];
        *at = static_cast<std::int16_t>((four + 1) / 2);
        sum += static_cast<std::uint32_t>(*at * *at);
      }
    }
    std::fill(squares, m_slidSquares.get() + static_cast<std::size_t>(way + 1) * m_slidRow, sum);
    // Whatever follows is multiplied by zeros, and the last row is followed by kGridBlock of them.
    std::fill(at, m_slidOutline.get() + static_cast<std::size_t>(way + 1) * m_slidRow * kBandCount,
              std::int16_t{0});
  }
  std::fill_n(m_slidOutline.get() + kGroupFrames * m_slidRow * kBandCount, kGridBlock,
              std::int16_t{0});
  std::int16_t* const behind =
      std::copy_n(SlidOutline(0), static_cast<std::size_t>(Groups()) * kBandCount, m_outline.get());
  std::fill_n(behind, kGridBlock, std::int16_t{0});
  m_outlineSquares = SlidOutlineSquares(0)[Groups()] - SlidOutlineSquares(0)[0];
}

}  // namespace voicemath
