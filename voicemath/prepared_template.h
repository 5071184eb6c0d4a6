#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "platform/result.h"
#include "voicemath/constants.h"
#include "voicemath/vector_clones.h"

namespace voicemath {

/// Why a template was not prepared.
enum class PrepareError : std::uint8_t { kNoMemory };

/// A template in the forms that a comparison needs. They are made once, when its slot is filled,
/// since each template is compared with many others.
///
/// - The *shape* decides: each value times the reciprocal of the norm, rounded to float. It is kept
///   frame by frame, and once more band by band, so that one band of several neighbouring frames is
///   one vector. There the first frame is repeated before it and the last one after it, kHeldShapes
///   times each.
/// - The *grid* screens: the shape in whole steps of 1 / kGridSteps. Sums of whole numbers are
///   exact in any order, and a vector holds twice as many 16-bit numbers as floats. It is kept as
///   it is, and once more between repetitions of its first and its last frame. Zeros follow.
/// - Running sums of the grid: with them a frame that is held against many others costs as little
///   as one that is held against a single one.
///
/// The grid is missing, and IsOnGrid is false, if there are no frames, if a value of the
/// shape is negative, no number or nearly all of the norm, or if the norm lost too much in float.
/// Hardly any recording gives such a template, and to compare it only takes longer.
class PreparedTemplate {
 public:
  static constexpr std::int32_t kGridSteps = 1 << 14;
  /// The grid may be read in blocks of so many values, its zeros included.
  static constexpr std::size_t kGridBlock = 16;
  /// Zeros after the held grid, enough for kProductLanes stretches that begin a frame apart.
  static constexpr std::size_t kHeldZeros = kGridBlock + kProductLanes * kBandCount;

  /// How often the shape of a band repeats its ends. Enough for all shifts of two names.
  static constexpr std::size_t kHeldShapes = 16;

  /// How often the held grid repeats its ends. Enough for words of usual lengths.
  static constexpr std::int32_t kHeldFrames = 64;

  /// Sums over all frames before one frame.
  struct GridSums {
    std::array<std::int32_t, kBandCount> bands{};
    std::int32_t squares = 0;
  };

  PreparedTemplate() = default;

  /// Prepares `values`, frame by frame, kBandCount each. If this fails, the template is as it was.
  [[nodiscard]] platform::Result<void, PrepareError> Prepare(std::span<const float> values);

  [[nodiscard]] std::int32_t Frames() const { return m_frames; }
  [[nodiscard]] bool IsOnGrid() const { return m_isOnGrid; }
  /// Returns whether all frames are alike.
  [[nodiscard]] bool IsSteady() const { return m_isSteady; }
  /// Returns the square root of the number of values, rounded up.
  [[nodiscard]] std::int32_t RootOfSize() const { return m_rootOfSize; }

  /// Returns the place of frame `frame` of a band's shape. Frames from -kHeldShapes up to Frames()
  /// + kHeldShapes may be read.
  [[nodiscard]] const float* Shape(std::size_t band, std::ptrdiff_t frame) const {
    return m_shape + static_cast<std::ptrdiff_t>(band * m_bandLength + kHeldShapes) + frame;
  }
  /// Returns the bands of one frame of the shape.
  [[nodiscard]] const float* ShapeByFrame(std::int32_t frame) const {
    return m_shapeByFrame + static_cast<std::size_t>(frame) * kBandCount;
  }
  [[nodiscard]] const std::int16_t* Grid(std::int32_t frame) const {
    return m_grid + static_cast<std::size_t>(frame) * kBandCount;
  }
  /// `frame` may be from -kHeldFrames on. The last frame is repeated kHeldFrames times, and then
  /// kHeldZeros follow.
  [[nodiscard]] const std::int16_t* HeldGrid(std::int32_t frame) const {
    return m_heldGrid + static_cast<std::size_t>(frame + kHeldFrames) * kBandCount;
  }
  /// Returns the sum of the squares of the held grid before `frame`, as far as 32 bits hold it. The
  /// sums before the next frames follow.
  [[nodiscard]] const std::uint32_t* HeldSquares(std::int32_t frame) const {
    return m_heldSquares + (frame + kHeldFrames);
  }
  [[nodiscard]] const GridSums& SumsBefore(std::int32_t frame) const {
    return m_sums[static_cast<std::size_t>(frame)];
  }
  /// Returns the sum of the squares of one frame of the grid.
  [[nodiscard]] std::int32_t Square(std::int32_t frame) const {
    return SumsBefore(frame + 1).squares - SumsBefore(frame).squares;
  }

 private:
  [[nodiscard]] platform::Result<void, PrepareError> Allocate(std::size_t frames);
  /// Returns how many bytes all arrays need.
  std::size_t PlaceArrays(std::byte* memory);
  void FillShape(std::span<const float> values);
  [[nodiscard]] bool FillGrid();
  void FillHeldGrid();

  std::int32_t m_frames = 0;
  std::int32_t m_rootOfSize = 0;
  std::size_t m_bandLength = 0;
  bool m_isOnGrid = false;
  bool m_isSteady = true;
  std::unique_ptr<std::byte[]> m_memory;  ///< Of all arrays.
  float* m_shape = nullptr;
  float* m_shapeByFrame = nullptr;
  std::int16_t* m_grid = nullptr;
  std::int16_t* m_heldGrid = nullptr;
  std::uint32_t* m_heldSquares = nullptr;
  GridSums* m_sums = nullptr;
};

}  // namespace voicemath
