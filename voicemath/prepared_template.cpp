#include "voicemath/prepared_template.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
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

/// Writes one frame `count` times. Returns the place after the last.
std::int16_t* Repeat(const std::int16_t* frame, std::size_t count, std::int16_t* at) {
  for (; count > 0; --count, at += kBandCount) {
    std::memcpy(at, frame, kBandCount * sizeof *at);
  }
  return at;
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
  m_frames = static_cast<std::int32_t>(frames);
  m_rootOfSize =
      static_cast<std::int32_t>(std::ceil(std::sqrt(static_cast<double>(frames * kBandCount))));
  m_bandLength = frames + 2 * kFloatLanes;
  m_slidRow = (frames + 2 * std::size_t{kHeldFrames}) / kGroupFrames + 2;
  m_memory.reset(new (std::nothrow) std::byte[PlaceArrays(nullptr)]);
  return m_memory && PlaceArrays(m_memory.get()) > 0;
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
  sharing.Place(m_outline, frames / kGroupFrames * kBandCount + kGridBlock);
  sharing.Place(m_slidOutline, kGroupFrames * m_slidRow * kBandCount + kGridBlock);
  sharing.Place(m_slidSquares, kGroupFrames * m_slidRow);
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
    at = std::fill_n(at, kFloatLanes, m_shapeByFrame[band]);
    for (std::size_t frame = 0; frame <= last; ++frame) {
      *at++ = m_shapeByFrame[frame * kBandCount + band];
    }
    std::fill_n(at, kFloatLanes, m_shapeByFrame[last * kBandCount + band]);
  }
}

bool PreparedTemplate::FillGrid() {
  std::int16_t* at = m_grid;
  m_sums[0] = {};
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
  const std::int32_t last = m_frames - 1;
  std::int16_t* at = Repeat(Grid(0), kHeldFrames, m_heldGrid);
  at = std::copy_n(Grid(0), static_cast<std::size_t>(m_frames) * kBandCount, at);
  at = Repeat(Grid(last), kHeldFrames, at);
  std::fill_n(at, kHeldZeros, std::int16_t{0});

  const auto first = static_cast<std::uint32_t>(Square(0));
  const std::uint32_t before = kHeldFrames * first;
  std::uint32_t* squares = RepeatSum(0, first, kHeldFrames, m_heldSquares);
  for (std::int32_t frame = 0; frame < m_frames; ++frame) {
    *squares++ = before + static_cast<std::uint32_t>(SumsBefore(frame).squares);
  }
  RepeatSum(before + static_cast<std::uint32_t>(SumsBefore(m_frames).squares),
            static_cast<std::uint32_t>(Square(last)), kHeldFrames + 1, squares);
}

/// Fills one row after the other. A group that begins before the third last repetition of the first
/// frame, or with the last frame or later, is one frame four times.
void PreparedTemplate::FillOutline() {
  constexpr std::int32_t kFirst = -kHeldFrames;
  constexpr std::int32_t kFirstMixed = 1 - kGroupFrames;
  std::array<std::int16_t, kBandCount> before;
  std::array<std::int16_t, kBandCount> after;
  for (std::size_t band = 0; band < kBandCount; ++band) {
    before[band] = static_cast<std::int16_t>(2 * Grid(0)[band]);
    after[band] = static_cast<std::int16_t>(2 * Grid(m_frames - 1)[band]);
  }
  const std::uint32_t squareBefore = 4 * static_cast<std::uint32_t>(Square(0));
  const std::uint32_t squareAfter = 4 * static_cast<std::uint32_t>(Square(m_frames - 1));
  const std::int32_t end = m_frames + kHeldFrames - kGroupFrames;
  // The sums of a row lie kGroupFrames apart. A few after the last group are read and not used.
  std::fill_n(m_slidSquares, kGroupFrames * m_slidRow, 0U);
  for (std::int32_t begin = kFirst; begin < kFirst + kGroupFrames; ++begin) {
    std::int16_t* at = m_slidOutline + SlidPlace(begin) * kBandCount;
    std::int16_t* const rowEnd = at + m_slidRow * kBandCount;
    std::uint32_t* squares = m_slidSquares + (begin - kFirst);
    std::int32_t frame = begin;
    const auto add = [&](std::uint32_t square) {
      squares[kGroupFrames] = *squares + square;
      squares += kGroupFrames;
      frame += kGroupFrames;
    };
    const auto repeat = [&](const std::array<std::int16_t, kBandCount>& held, std::uint32_t square,
                            std::int32_t until) {
      while (frame < until) {
        at = Repeat(held.data(), 1, at);
        add(square);
      }
    };
    repeat(before, squareBefore, kFirstMixed);
    while (frame < m_frames - 1) {
      const std::int16_t* of = HeldGrid(frame);
      std::uint32_t square = 0;
      for (std::size_t band = 0; band < kBandCount; ++band, ++of, ++at) {
        const std::int32_t four = of[0] + of[kBandCount] + of[2 * kBandCount] + of[3 * kBandCount];
        *at = static_cast<std::int16_t>((four + 1) / 2);
        square += static_cast<std::uint32_t>(*at * *at);
      }
      add(square);
    }
    repeat(after, squareAfter, end + 1);
    // What follows the last group is multiplied by zeros.
    std::fill(at, rowEnd, std::int16_t{0});
  }
  std::fill_n(m_slidOutline + kGroupFrames * m_slidRow * kBandCount, kGridBlock, std::int16_t{0});
  std::int16_t* const afterLast =
      std::copy_n(SlidOutline(0), static_cast<std::size_t>(Groups()) * kBandCount, m_outline);
  std::fill_n(afterLast, kGridBlock, std::int16_t{0});
  m_outlineSquares = *SlidOutlineSquares(Groups() * kGroupFrames) - *SlidOutlineSquares(0);
}

}  // namespace voicemath
