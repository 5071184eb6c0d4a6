#include "voicemath/prepared_template.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <new>
#include <utility>

namespace voicemath {
namespace {

/// Values of the shape stay below this, so those of the grid are below kGridSteps. Only a value
/// that is nearly the whole norm is not below it.
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

/// Writes one frame `count` times, a multiple of 8. Returns the place after the last.
std::int16_t* Repeat(const std::int16_t* frame, std::size_t count, std::int16_t* at) {
  // A copy of a known size is a few moves.
  constexpr std::size_t kSome = 8;
  for (std::size_t i = 0; i < kSome; ++i) {
    std::memcpy(at + i * kBandCount, frame, kBandCount * sizeof *at);
  }
  std::int16_t* const end = at + count * kBandCount;
  for (at += kSome * kBandCount; at < end; at += kSome * kBandCount) {
    std::memcpy(at, at - kSome * kBandCount, kSome * kBandCount * sizeof *at);
  }
  return end;
}

/// Writes the running sum of `count` equal numbers, from the sum before the first of them on.
/// Returns the place after the sum before the last.
std::uint32_t* RepeatSum(std::uint32_t sum, std::uint32_t number, std::size_t count,
                         std::uint32_t* at) {
  for (std::uint32_t i = 0; i < count; ++i) {
    *at++ = sum + i * number;
  }
  return at;
}

/// Shares a stretch of memory out among arrays.
class Sharing {
 public:
  explicit Sharing(std::byte* memory) : m_memory(memory) {}

  /// Places an array of `count` numbers. Without memory, counts only how much there must be.
  template <typename T>
  void Place(T*& numbers, std::size_t count) {
    numbers = m_memory == nullptr ? nullptr : reinterpret_cast<T*>(m_memory + m_size);
    m_size += (count * sizeof(T) + kAlignment - 1) / kAlignment * kAlignment;
  }
  [[nodiscard]] std::size_t Size() const { return m_size; }

 private:
  static constexpr std::size_t kAlignment = 16;

  std::byte* m_memory;
  std::size_t m_size = 0;
};

/// Returns the nearest point of the grid, which is at most half a step away. A tie goes up. The
/// product with a power of two is exact, and so is all that follows.
std::int16_t OnGrid(float shape) {
  const auto halfSteps =
      static_cast<std::int32_t>(shape * static_cast<float>(2 * PreparedTemplate::kGridSteps));
  return static_cast<std::int16_t>((halfSteps + 1) / 2);
}

}  // namespace

platform::Result<void, PrepareError> PreparedTemplate::Prepare(std::span<const float> values) {
  PreparedTemplate made;
  const std::size_t frames = values.size() / kBandCount;
  if (auto allocated = made.Allocate(frames); !allocated) {
    return allocated;
  }
  if (frames > 0) {
    made.FillShape(values);
    made.m_isOnGrid = made.FillGrid();
  }
  if (made.m_isOnGrid) {
    made.FillHeldGrid();
  }
  *this = std::move(made);
  return {};
}

platform::Result<void, PrepareError> PreparedTemplate::Allocate(std::size_t frames) {
  m_frames = static_cast<std::int32_t>(frames);
  m_rootOfSize =
      static_cast<std::int32_t>(std::ceil(std::sqrt(static_cast<double>(frames * kBandCount))));
  m_bandLength = frames + 2 * kHeldShapes;
  m_memory.reset(new (std::nothrow) std::byte[PlaceArrays(nullptr)]);
  if (!m_memory) {
    return platform::Failure(PrepareError::kNoMemory);
  }
  PlaceArrays(m_memory.get());
  return {};
}

std::size_t PreparedTemplate::PlaceArrays(std::byte* memory) {
  const auto frames = static_cast<std::size_t>(m_frames);
  const std::size_t values = frames * kBandCount;
  const std::size_t heldFrames = frames + 2 * std::size_t{kHeldFrames};
  Sharing sharing(memory);
  sharing.Place(m_shape, m_bandLength * kBandCount);
  sharing.Place(m_shapeByFrame, values);
  sharing.Place(m_grid, values + kGridBlock);
  sharing.Place(m_heldGrid, heldFrames * kBandCount + kHeldZeros);
  sharing.Place(m_heldSquares, heldFrames + 1);
  sharing.Place(m_sums, frames + 1);
  return sharing.Size();
}

void PreparedTemplate::FillShape(std::span<const float> values) {
  const float scale = ReciprocalNorm(values);
  const auto last = static_cast<std::size_t>(m_frames) - 1;
  for (std::size_t i = 0; i < (last + 1) * kBandCount; ++i) {
    m_shapeByFrame[i] = values[i] * scale;
  }
  m_isSteady = std::equal(ShapeByFrame(1), ShapeByFrame(m_frames), ShapeByFrame(0));
  for (std::size_t band = 0; band < kBandCount; ++band) {
    float* at = m_shape + band * m_bandLength;
    at = std::fill_n(at, kHeldShapes, m_shapeByFrame[band]);
    for (std::size_t frame = 0; frame <= last; ++frame) {
      *at++ = m_shapeByFrame[frame * kBandCount + band];
    }
    std::fill_n(at, kHeldShapes, m_shapeByFrame[last * kBandCount + band]);
  }
}

bool PreparedTemplate::FillGrid() {
  const std::size_t count = static_cast<std::size_t>(m_frames) * kBandCount;
  int others = 0;  // The compiler looks at several side by side.
  for (std::size_t i = 0; i < count; ++i) {
    const float shape = m_shapeByFrame[i];
    others |= static_cast<int>(!(shape >= 0.0F)) | static_cast<int>(!(shape < kShapeLimit));
  }
  if (others != 0) {
    return false;
  }
  for (std::size_t i = 0; i < count; ++i) {
    m_grid[i] = OnGrid(m_shapeByFrame[i]);
  }
  std::fill_n(m_grid + count, kGridBlock, std::int16_t{0});
  GridSums sums;
  std::int64_t squares = 0;
  for (std::int32_t frame = 0; frame < m_frames && squares <= kLargestSquares; ++frame) {
    m_sums[frame] = sums;
    std::int32_t square = 0;
    for (std::size_t band = 0; band < kBandCount; ++band) {
      const std::int32_t value = Grid(frame)[band];
      sums.bands[band] += value;
      square += value * value;
    }
    squares += square;
    sums.squares = static_cast<std::int32_t>(squares);
  }
  m_sums[m_frames] = sums;
  return squares <= kLargestSquares;
}

void PreparedTemplate::FillHeldGrid() {
  const std::int32_t last = m_frames - 1;
  std::int16_t* at = Repeat(Grid(0), kHeldFrames, m_heldGrid);
  at = std::copy_n(Grid(0), static_cast<std::size_t>(m_frames) * kBandCount, at);
  at = Repeat(Grid(last), kHeldFrames, at);
  static constexpr std::array<std::int16_t, kHeldZeros> kZeros{};
  std::ranges::copy(kZeros, at);

  const auto first = static_cast<std::uint32_t>(Square(0));
  const std::uint32_t before = kHeldFrames * first;
  std::uint32_t* squares = RepeatSum(0, first, kHeldFrames, m_heldSquares);
  for (std::int32_t frame = 0; frame < m_frames; ++frame) {
    *squares++ = before + static_cast<std::uint32_t>(SumsBefore(frame).squares);
  }
  RepeatSum(before + static_cast<std::uint32_t>(SumsBefore(m_frames).squares),
            static_cast<std::uint32_t>(Square(last)), kHeldFrames + 1, squares);
}

}  // namespace voicemath
