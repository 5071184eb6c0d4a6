#include "voicemath/prepared_template.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <utility>

namespace voicemath {
namespace {

/// Values of the shape stay below this. A repeated frame makes half the sum of four equal values,
/// rounded up, and that has to fit into 16 bits. Only a value that is nearly the whole norm is not
/// below it.
constexpr float kShapeLimit = 1.0F - 1.0F / static_cast<float>(2 * PreparedTemplate::kGridSteps);

/// The sum of squares of a grid is at most this, which is twice what a norm of 1 gives.
constexpr std::int64_t kLargestSquares =
    std::int64_t{2} * PreparedTemplate::kGridSteps * PreparedTemplate::kGridSteps;

/// Returns the reciprocal of the Euclidean norm. Returns 1 for a template that is all zeros or has
/// no frames.
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

/// Reserves so many numbers and leaves them without a value. Returns false if there is no memory
/// for them.
template <typename T>
bool Make(std::unique_ptr<T[]>& numbers, std::size_t count) {
  numbers.reset(new (std::nothrow) T[count]);
  return numbers != nullptr;
}

/// Returns the nearest point of the grid, which is at most half a step away. A tie goes up. The
/// product with a power of two is exact, and so is all that follows.
std::int16_t OnGrid(float shape) {
  const auto halfSteps =
      static_cast<std::int32_t>(shape * static_cast<float>(2 * PreparedTemplate::kGridSteps));
  return static_cast<std::int16_t>((halfSteps + 1) / 2);
}

}  // namespace

bool PreparedTemplate::Prepare(std::span<const float> values) {
  PreparedTemplate made;
  const std::size_t frames = values.size() / kBandCount;
  if (!made.Allocate(frames)) {
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

bool PreparedTemplate::Allocate(std::size_t frames) {
  const std::size_t values = frames * kBandCount;
  const std::size_t heldFrames = frames + 2 * std::size_t{kHeldFrames};
  m_frames = static_cast<std::int32_t>(frames);
  m_rootOfSize = static_cast<std::int32_t>(std::ceil(std::sqrt(static_cast<double>(values))));
  m_bandLength = frames + 2 * kFloatLanes;
  m_slidRow = heldFrames / kGroupFrames + 2;
  return Make(m_shape, m_bandLength * kBandCount) && Make(m_shapeByFrame, values) &&
         Make(m_grid, values + kGridBlock) &&
         Make(m_heldGrid, heldFrames * kBandCount + kHeldZeros) &&
         Make(m_heldSquares, heldFrames + 1) && Make(m_sums, frames + 1) &&
         Make(m_outline, frames / kGroupFrames * kBandCount + kGridBlock) &&
         Make(m_slidOutline, kGroupFrames * m_slidRow * kBandCount + kGridBlock) &&
         Make(m_slidSquares, kGroupFrames * m_slidRow);
}

void PreparedTemplate::FillShape(std::span<const float> values) {
  const float scale = ReciprocalNorm(values);
  const auto last = static_cast<std::size_t>(m_frames) - 1;
  for (std::size_t i = 0; i < (last + 1) * kBandCount; ++i) {
    m_shapeByFrame[i] = values[i] * scale;
  }
  m_isSteady = std::equal(ShapeByFrame(1), ShapeByFrame(m_frames), ShapeByFrame(0));
  for (std::size_t band = 0; band < kBandCount; ++band) {
    float* at = m_shape.get() + band * m_bandLength;
    at = std::fill_n(at, kFloatLanes, m_shapeByFrame[band]);
    for (std::size_t frame = 0; frame <= last; ++frame) {
      *at++ = m_shapeByFrame[frame * kBandCount + band];
    }
    std::fill_n(at, kFloatLanes, m_shapeByFrame[last * kBandCount + band]);
  }
}

bool PreparedTemplate::FillGrid() {
  std::int16_t* at = m_grid.get();
  std::int64_t squares = 0;
  for (std::int32_t frame = 0; frame < m_frames; ++frame) {
    GridSums sums = SumsBefore(frame);
    for (std::size_t band = 0; band < kBandCount; ++band) {
      const float shape = *Shape(band, frame);
      if (!(shape >= 0.0F && shape < kShapeLimit)) {
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
  std::uint32_t* squares = m_heldSquares.get();
  std::uint32_t sum = 0;
  for (std::int32_t frame = -kHeldFrames; frame < m_frames + kHeldFrames; ++frame) {
    const std::int32_t held = std::clamp(frame, 0, m_frames - 1);
    at = std::copy_n(Grid(held), kBandCount, at);
    *squares++ = sum;
    sum += static_cast<std::uint32_t>(Square(held));
  }
  *squares = sum;
  std::fill_n(at, kHeldZeros, std::int16_t{0});
}

void PreparedTemplate::FillOutline() {
  std::fill_n(m_slidSquares.get(), kGroupFrames, 0U);
  // What follows the last group is multiplied by zeros.
  std::fill_n(m_slidOutline.get(), kGroupFrames * m_slidRow * kBandCount, std::int16_t{0});
  std::uint32_t* squares = m_slidSquares.get() + kGroupFrames;
  const std::int32_t end = m_frames + kHeldFrames - kGroupFrames;
  for (std::int32_t frame = -kHeldFrames; frame <= end; ++frame, ++squares) {
    const std::int16_t* of = HeldGrid(frame);
    std::int16_t* at = m_slidOutline.get() + SlidPlace(frame) * kBandCount;
    *squares = squares[-kGroupFrames];
    for (std::size_t band = 0; band < kBandCount; ++band, ++of, ++at) {
      const std::int32_t four = of[0] + of[kBandCount] + of[2 * kBandCount] + of[3 * kBandCount];
      *at = static_cast<std::int16_t>((four + 1) / 2);
      *squares += static_cast<std::uint32_t>(*at * *at);
    }
  }
  // After the last group, a few more sums are read and not used, so they are zeros.
  std::fill(squares, m_slidSquares.get() + kGroupFrames * m_slidRow, 0U);
  std::fill_n(m_slidOutline.get() + kGroupFrames * m_slidRow * kBandCount, kGridBlock,
              std::int16_t{0});
  std::int16_t* const after =
      std::copy_n(SlidOutline(0), static_cast<std::size_t>(Groups()) * kBandCount, m_outline.get());
  std::fill_n(after, kGridBlock, std::int16_t{0});
  m_outlineSquares = *SlidOutlineSquares(Groups() * kGroupFrames) - *SlidOutlineSquares(0);
}

}  // namespace voicemath
