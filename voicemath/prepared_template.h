#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "voicemath/constants.h"
#include "voicemath/vector_clones.h"

namespace voicemath {

/// A template in the forms that a comparison needs. They are made once, when its slot is filled,
/// since each template is compared with many others.
///
/// - The *shape* decides: each value times the reciprocal of the norm, rounded to float. It is kept
///   frame by frame, and once more band by band, so that one band of several neighbouring frames is
///   one vector. There the first frame is repeated before it and the last one after it, kFloatLanes
///   times each.
/// - The *grid* screens: the shape in whole steps of 1 / kGridSteps. Sums of whole numbers are
///   exact in any order, and a vector holds twice as many 16-bit numbers as floats. It is kept as
///   it is, and once more between repetitions of its first and its last frame. Zeros follow.
/// - The *outline* screens first, with a quarter of the numbers: half the sums of groups of
///   kGroupFrames frames of the grid. It is kept for the groups from the first frame on, and once
///   more for groups that begin at any frame, the ends repeated.
/// - Running sums of the grid: with them a frame that is held against many others costs as little
///   as one that is held against a single one.
///
/// Grid and outline are missing, and IsOnGrid is false, if there are no frames, if a value of the
/// shape is negative, no number or nearly all of the norm, or if the norm lost too much in float.
/// Hardly any recording gives such a template, and to compare it only takes longer.
class PreparedTemplate {
 public:
  static constexpr std::int32_t kGridSteps = 1 << 14;
  /// The grid may be read in blocks of so many values, its zeros included.
  static constexpr std::size_t kGridBlock = 16;
  /// Zeros after the held grid, enough for kProductLanes stretches that begin a frame apart.
  static constexpr std::size_t kHeldZeros = kGridBlock + kProductLanes * kBandCount;

  /// How often the held grid repeats its ends. Enough for words of usual lengths.
  static constexpr std::int32_t kHeldFrames = 64;

  static constexpr std::int32_t kGroupFrames = 4;

  /// Sums over all frames before one frame.
  struct GridSums {
    std::array<std::int32_t, kBandCount> bands{};
    std::int32_t squares = 0;
  };

  PreparedTemplate() = default;

  /// Prepares `values`, frame by frame, kBandCount each. Returns false if there is no memory; the
  /// template is then as it was.
  [[nodiscard]] bool Prepare(std::span<const float> values);

  [[nodiscard]] std::int32_t Frames() const { return m_frames; }
  [[nodiscard]] bool IsOnGrid() const { return m_isOnGrid; }
  /// Returns whether all frames are alike.
  [[nodiscard]] bool IsSteady() const { return m_isSteady; }
  /// Returns the square root of the number of values, rounded up.
  [[nodiscard]] std::int32_t RootOfSize() const { return m_rootOfSize; }

  /// Returns the place of frame `frame` of a band's shape. `frame` may be from -kFloatLanes up to
  /// Frames(), and kFloatLanes frames may be read from there.
  [[nodiscard]] const float* Shape(std::size_t band, std::ptrdiff_t frame) const {
    return m_shape + static_cast<std::ptrdiff_t>(band * m_bandLength + kFloatLanes) + frame;
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

  /// Returns the number of whole groups of kGroupFrames frames.
  [[nodiscard]] std::int32_t Groups() const { return m_frames / kGroupFrames; }
  /// Returns one frame for each group. Zeros follow.
  [[nodiscard]] const std::int16_t* Outline() const { return m_outline; }
  [[nodiscard]] std::uint32_t OutlineSquares() const { return m_outlineSquares; }
  /// Returns the outline of the group that begins at `frame`; those of the groups that follow it
  /// come next. `frame` may be from -kHeldFrames on, and the last frame of a group at most
  /// kHeldFrames - 1 after the template's last one.
  [[nodiscard]] const std::int16_t* SlidOutline(std::int32_t frame) const {
    return m_slidOutline + SlidPlace(frame) * kBandCount;
  }
  /// Returns the sum of the squares of the outlines before that group, as far as 32 bits hold it.
  /// The sums for groups that begin a frame later follow.
  [[nodiscard]] const std::uint32_t* SlidOutlineSquares(std::int32_t frame) const {
    return m_slidSquares + (frame + kHeldFrames);
  }
  /// Returns how many frames of outlines lie between a group that begins at a multiple of
  /// kGroupFrames and the group that begins a frame later.
  [[nodiscard]] std::size_t SlidRow() const { return m_slidRow; }

 private:
  /// Groups that follow each other lie side by side, so there is a row for each of the kGroupFrames
  /// ways to begin.
  [[nodiscard]] std::size_t SlidPlace(std::int32_t frame) const {
    const std::int32_t fromHeld = frame + kHeldFrames;
    const auto held = static_cast<std::size_t>(fromHeld);
    return held % kGroupFrames * m_slidRow + held / kGroupFrames;
  }
  [[nodiscard]] bool Allocate(std::size_t frames);
  /// Returns how many bytes all arrays need.
  std::size_t PlaceArrays(std::byte* memory);
  void FillOutline();
  void FillShape(std::span<const float> values);
  [[nodiscard]] bool FillGrid();
  void FillHeldGrid();

  std::int32_t m_frames = 0;
  std::int32_t m_rootOfSize = 0;
  std::size_t m_bandLength = 0;
  bool m_isOnGrid = false;
  bool m_isSteady = true;
  std::size_t m_slidRow = 0;
  std::uint32_t m_outlineSquares = 0;
  std::unique_ptr<std::byte[]> m_memory;  ///< Of all arrays.
  float* m_shape = nullptr;
  float* m_shapeByFrame = nullptr;
  std::int16_t* m_grid = nullptr;
  std::int16_t* m_heldGrid = nullptr;
  std::uint32_t* m_heldSquares = nullptr;
  GridSums* m_sums = nullptr;
  std::int16_t* m_outline = nullptr;
  std::int16_t* m_slidOutline = nullptr;
  std::uint32_t* m_slidSquares = nullptr;
};

}  // namespace voicemath
