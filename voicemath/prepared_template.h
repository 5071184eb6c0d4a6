#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "voicemath/constants.h"
#include "voicemath/vector_clones.h"

namespace voicemath {

/// A template in the forms that comparing wants, made once when its slot is filled:
///
/// - the *shape*: each value times the reciprocal of the norm, rounded to float. Once frame by
///   frame, and once band by band, with the first frame repeated before it and the last one after,
///   kFloatLanes times each;
/// - the *grid*: the shape on a grid of steps of 1 / kGridSteps, as whole numbers, frame by frame,
///   once as it is, and once between repetitions of its first and its last frame. Zeros follow;
/// - the *outline*: half the sums of groups of kGroupFrames frames of the grid, as whole numbers.
///   Once of the groups that follow each other from the first frame on, once of those that begin at
///   any frame, the ends repeated;
/// - running sums of the grid, so that a frame held against many others costs no more than one.
///
/// The grid and its outline are missing, and IsOnGrid is false, if there are no frames, or if a
/// value of the shape is negative, no number or nearly all of the norm, or the norm lost too much
/// in float: hardly any recording gives such a template, and comparing it only takes longer.
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

  /// Sums over all frames before one.
  struct GridSums {
    std::array<std::int32_t, kBandCount> bands{};
    std::int32_t squares = 0;
  };

  PreparedTemplate() = default;

  /// Prepares `values`, frame-major, kBandCount a frame. Without memory for it the template is left
  /// as it was and the result is false.
  [[nodiscard]] bool Prepare(std::span<const float> values);

  [[nodiscard]] std::int32_t Frames() const { return m_frames; }
  [[nodiscard]] bool IsOnGrid() const { return m_isOnGrid; }
  /// Whether all frames are alike.
  [[nodiscard]] bool IsSteady() const { return m_isSteady; }
  /// Square root of the number of values, rounded up.
  [[nodiscard]] std::int32_t RootOfSize() const { return m_rootOfSize; }

  /// Frame `frame` of a band's shape, which may be from -kFloatLanes up to Frames(); kFloatLanes
  /// frames may be read from there.
  [[nodiscard]] const float* Shape(std::size_t band, std::ptrdiff_t frame) const {
    return m_shape.get() + static_cast<std::ptrdiff_t>(band * m_bandLength + kFloatLanes) + frame;
  }
  /// The bands of one frame of the shape.
  [[nodiscard]] const float* ShapeByFrame(std::int32_t frame) const {
    return m_shapeByFrame.get() + static_cast<std::size_t>(frame) * kBandCount;
  }
  [[nodiscard]] const std::int16_t* Grid(std::int32_t frame) const {
    return m_grid.get() + static_cast<std::size_t>(frame) * kBandCount;
  }
  /// `frame` may be from -kHeldFrames on. Behind kHeldFrames frames after the last are kHeldZeros.
  [[nodiscard]] const std::int16_t* HeldGrid(std::int32_t frame) const {
    return m_heldGrid.get() + static_cast<std::size_t>(frame + kHeldFrames) * kBandCount;
  }
  /// Sum of the squares of the held grid before `frame`, as far as 32 bits hold it. Those before
  /// the next frames follow.
  [[nodiscard]] const std::uint32_t* HeldSquares(std::int32_t frame) const {
    return m_heldSquares.get() + (frame + kHeldFrames);
  }
  [[nodiscard]] const GridSums& SumsBefore(std::int32_t frame) const {
    return m_sums[static_cast<std::size_t>(frame)];
  }
  /// Sum of the squares of one frame of the grid.
  [[nodiscard]] std::int32_t Square(std::int32_t frame) const {
    return SumsBefore(frame + 1).squares - SumsBefore(frame).squares;
  }

  /// Whole groups of kGroupFrames frames.
  [[nodiscard]] std::int32_t Groups() const { return m_frames / kGroupFrames; }
  /// Frame by frame, one for each group. Zeros follow.
  [[nodiscard]] const std::int16_t* Outline() const { return m_outline.get(); }
  [[nodiscard]] std::uint32_t OutlineSquares() const { return m_outlineSquares; }
  /// The outline of the group that begins at `frame`, and of those that follow it. `frame` may be
  /// from -kHeldFrames on, and all frames of a group up to kHeldFrames - 1 behind the last.
  [[nodiscard]] const std::int16_t* SlidOutline(std::int32_t frame) const {
    return m_slidOutline.get() + SlidPlace(frame) * kBandCount;
  }
  /// Sum of the squares of those before, as far as 32 bits hold it. What follows are the sums for
  /// groups that begin a frame later.
  [[nodiscard]] const std::uint32_t* SlidOutlineSquares(std::int32_t frame) const {
    return m_slidSquares.get() + (frame + kHeldFrames);
  }
  /// How many frames of outlines lie between those of groups that begin at one frame and at the
  /// next, from a multiple of kGroupFrames on.
  [[nodiscard]] std::size_t SlidRow() const { return m_slidRow; }

 private:
  /// Groups that follow each other lie side by side, so there is a row for each way to begin.
  [[nodiscard]] std::size_t SlidPlace(std::int32_t frame) const {
    const std::int32_t fromHeld = frame + kHeldFrames;
    const auto held = static_cast<std::size_t>(fromHeld);
    return held % kGroupFrames * m_slidRow + held / kGroupFrames;
  }
  [[nodiscard]] bool Allocate(std::size_t frames);
  void FillOutline();
  void FillShape(std::span<const float> values);
  [[nodiscard]] bool FillGrid();
  void FillHeldGrid();

  std::int32_t m_frames = 0;
  std::int32_t m_rootOfSize = 0;
  std::size_t m_bandLength = 0;
  bool m_isOnGrid = false;
  bool m_isSteady = true;
  std::unique_ptr<float[]> m_shape;
  std::unique_ptr<float[]> m_shapeByFrame;
  std::unique_ptr<std::int16_t[]> m_grid;
  std::unique_ptr<std::int16_t[]> m_heldGrid;
  std::unique_ptr<std::uint32_t[]> m_heldSquares;
  std::unique_ptr<GridSums[]> m_sums;
  std::size_t m_slidRow = 0;
  std::uint32_t m_outlineSquares = 0;
  std::unique_ptr<std::int16_t[]> m_outline;
  std::unique_ptr<std::int16_t[]> m_slidOutline;
  std::unique_ptr<std::uint32_t[]> m_slidSquares;
};

}  // namespace voicemath
