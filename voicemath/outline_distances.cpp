#include "voicemath/outline_distances.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <type_traits>

#include "voicemath/template_pair.h"
#include "voicemath/vector_clones.h"

// How all pairs of some templates are screened.
//
// Two names have about seven shifts, and the sum of one shift is soon formed. To begin and to end
// it would cost more. So one template is held against several others, a lane for each. They are
// about as long as each other, and nothing moves between the lanes.
//
// What is held against each other are outlines: sums of two neighbouring frames of the grid. So
// there are half as many numbers. Let a and b be the differences of the frames. (a + b)^2 is at
// most 2 (a^2 + b^2), so half the distance of the outlines is not above that of the grids. The last
// one of an odd number of frames is left out, which makes a sum less.
//
// The distance is the squares of one side, plus those of the other, minus twice the products. The
// squares come from running sums of whole numbers, so only the products are formed for each shift.
// They are rounded: each product and each addition by a factor of 1 + 2^-24 at worst. They are at
// most 161, and no product is negative. Twice the products are not above the squares of both sides.
// So the distance is too high by less than a 2^16th of these squares. A 2^15th of them is taken
// off, since their own sum is rounded as well.
//
// A lane that is longer than the shortest one is also held at shifts that its pair does not have,
// which can only make its number less. Squares that leave 32 bits come out too low. Without a
// floating-point unit all numbers are whole, and a distance that leaves 32 bits comes out too low,
// too. Such a pair is only looked at more closely than it deserves.

namespace voicemath {
namespace {

constexpr std::int32_t kGroupFrames = 2;

/// Longer templates are no names. Their numbers stay 0.
constexpr std::int32_t kMostFrames = 64;

/// The frames where a group may begin or end that is held against the longest template at any
/// shift.
constexpr std::int32_t kMostBegins = 2 * (kMostFrames + kLead);

using Number = std::conditional_t<kVectorsFast, float, std::uint32_t>;

/// The rest of the squares is more than all roundings.
constexpr Number kShareOfSquares = kVectorsFast ? static_cast<Number>(1 - 0x1p-15) : 1;

/// The outline of a template from its first frame on.
struct Outline {
  std::array<Number, kMostFrames / kGroupFrames * kBandCount> numbers;
  Number squares;
};

/// A template that is screened, and its rank.
struct Screened {
  const PreparedTemplate* of;
  std::int32_t frames;
  std::size_t rank;
};

/// Writes the outline of the group that begins at a frame. Beyond the ends of the template its
/// first or last frame is held. The numbers of the bands lie `step` apart. Returns the sum of their
/// squares.
VOXTREL_INLINE std::uint32_t WriteGroup(const PreparedTemplate& of, std::int32_t frame, Number* at,
                                        std::size_t step) {
  const std::int32_t last = of.Frames() - 1;
  const std::int16_t* first = of.Grid(std::clamp(frame, 0, last));
  const std::int16_t* second = of.Grid(std::clamp(frame + 1, 0, last));
  std::uint32_t squares = 0;
  for (std::size_t band = 0; band < kBandCount; ++band) {
    const std::int32_t sum = first[band] + second[band];
    at[band * step] = static_cast<Number>(sum);
    squares += static_cast<std::uint32_t>(sum * sum);
  }
  return squares;
}

void WriteOutline(const PreparedTemplate& of, Outline& outline) {
  Number* at = outline.numbers.data();
  std::uint32_t squares = 0;
  for (std::int32_t frame = 0; frame + 1 < of.Frames(); frame += kGroupFrames, at += kBandCount) {
    squares += WriteGroup(of, frame, at, 1);
  }
  outline.squares = static_cast<Number>(squares);
}

/// kWidth templates side by side, at every frame where a group may begin or end.
template <std::size_t kWidth>
class SlidOutlines {
 public:
  /// The templates are sorted by their frames. They are held against up to `mostFrames` frames.
  void Fill(std::span<const Screened> lanes, std::int32_t mostFrames) {
    m_shortest = lanes.front().frames;
    m_first = m_shortest - mostFrames - kLead;
    const auto begins = static_cast<std::size_t>(mostFrames + kLead + 1 - m_first);
    for (std::size_t lane = 0; lane < kWidth; ++lane) {
      // Lanes that are left over hold the last template once more, and are not looked at.
      const PreparedTemplate& of = *lanes[std::min(lane, lanes.size() - 1)].of;
      std::array<std::uint32_t, kGroupFrames> before{};
      for (std::size_t i = 0; i < begins; ++i) {
        std::uint32_t& sum = before[i % kGroupFrames];
        m_squaresBefore[i * kWidth + lane] = static_cast<std::int32_t>(sum);
        sum += WriteGroup(of, m_first + static_cast<std::int32_t>(i),
                          &m_numbers[i * kBandCount * kWidth + lane], kWidth);
      }
    }
  }

  [[nodiscard]] std::int32_t LowestShift(std::int32_t frames) const {
    return m_shortest - frames - kLead;
  }
  /// Returns the outlines of all lanes from a frame on; those of the next frames follow.
  [[nodiscard]] const Number* At(std::int32_t frame) const {
    return &m_numbers[Place(frame) * kBandCount * kWidth];
  }
  /// Returns the sums of the squares of the groups before a frame, among those that begin there or
  /// whole groups away from there. The sums before the next frames follow.
  [[nodiscard]] const std::int32_t* SquaresBefore(std::int32_t frame) const {
    return &m_squaresBefore[Place(frame) * kWidth];
  }

 private:
  [[nodiscard]] std::size_t Place(std::int32_t frame) const {
    return static_cast<std::size_t>(frame - m_first);
  }

  std::int32_t m_shortest = 0;
  std::int32_t m_first = 0;  ///< Of the frames where a group may begin.
  alignas(64) std::array<Number, kMostBegins * kBandCount * kWidth> m_numbers;
  alignas(64) std::array<std::int32_t, kMostBegins * kWidth> m_squaresBefore;
};

/// So many numbers side by side, and the same if they lie in an array of numbers.
template <typename T, std::size_t kWidth>
struct SideBySide {
  using Type [[gnu::vector_size(sizeof(T) * kWidth)]] = T;
  using InArray [[gnu::vector_size(sizeof(T) * kWidth), gnu::may_alias]] = T;
};

/// The search for the least distance of each of kWidth lanes from one other template.
template <std::size_t kWidth>
class LanesSearch {
 public:
  VOXTREL_INLINE LanesSearch(const SlidOutlines<kWidth>& slid, const Outline& fixed,
                             std::int32_t frames)
      : m_slid(slid), m_fixed(fixed), m_groups(frames / kGroupFrames) {
    // Each addition waits for the one before it, so several shifts take turns. There are at
    // least 5.
    std::int32_t shift = slid.LowestShift(frames);
    for (; kLead - shift >= 10; shift += 7) {
      Take<7>(shift);
    }
    if (kLead - shift >= 7) {
      Take<4>(shift);
      shift += 4;
    }
    switch (kLead - shift) {
      case 6:
        Take<7>(shift);
        break;
      case 5:
        Take<6>(shift);
        break;
      case 4:
        Take<5>(shift);
        break;
      default:
        Take<4>(shift);
    }
  }

  /// Returns a number that is not above half the distance at any shift.
  [[nodiscard]] VOXTREL_INLINE std::uint32_t HalfDistance(std::size_t lane) const {
    constexpr auto kMost = static_cast<Number>(1U << 31);
    return static_cast<std::uint32_t>(std::clamp<Number>(m_least[lane] / 2, 0, kMost));
  }

 private:
  using Lanes = typename SideBySide<Number, kWidth>::Type;
  using LanesInArray = typename SideBySide<Number, kWidth>::InArray;
  using Squares = typename SideBySide<std::int32_t, kWidth>::Type;
  using SquaresInArray = typename SideBySide<std::int32_t, kWidth>::InArray;

  /// Forms the distances of kShifts shifts from one on.
  template <std::size_t kShifts>
  VOXTREL_INLINE void Take(std::int32_t shift) {
    std::array<Lanes, kShifts> products{};
    const Number* numbers = m_slid.At(shift);
    const Number* value = m_fixed.numbers.data();
    for (std::int32_t group = 0; group < m_groups; ++group) {
      for (std::size_t band = 0; band < kBandCount; ++band, ++value, numbers += kWidth) {
        for (std::size_t i = 0; i < kShifts; ++i) {
          const Lanes product =
              *value * *reinterpret_cast<const LanesInArray*>(numbers + i * kBandCount * kWidth);
          products[i] += product;
        }
      }
      numbers += (kGroupFrames - 1) * kBandCount * kWidth;
    }
    const std::int32_t* begin = m_slid.SquaresBefore(shift);
    const std::int32_t* end = m_slid.SquaresBefore(shift + m_groups * kGroupFrames);
    for (std::size_t i = 0; i < kShifts; ++i, begin += kWidth, end += kWidth) {
      const Squares squares = *reinterpret_cast<const SquaresInArray*>(end) -
                              *reinterpret_cast<const SquaresInArray*>(begin);
      const Lanes both = __builtin_convertvector(squares, Lanes) + m_fixed.squares;
      const Lanes distances = both * kShareOfSquares - (products[i] + products[i]);
      m_least = distances < m_least ? distances : m_least;
    }
  }

  const SlidOutlines<kWidth>& m_slid;
  const Outline& m_fixed;
  const std::int32_t m_groups;
  Lanes m_least = Lanes{} + std::numeric_limits<Number>::max();
};

/// All templates that are screened, sorted by their frames.
struct Material {
  std::array<Screened, kMostTemplates> templates;
  std::array<Outline, kMostTemplates> outlines;
  std::size_t count = 0;
};

/// Holds each template side by side with others against all those that are as long or longer.
template <std::size_t kWidth>
VOXTREL_INLINE void HoldAll(const Material& material, PairTable& table, const GoOn& goOn) {
  const auto all = std::span(material.templates).first(material.count);
  SlidOutlines<kWidth> slid;
  for (std::size_t begin = 0; begin < all.size() && (!goOn || goOn()); begin += kWidth) {
    const auto lanes = all.subspan(begin, std::min(kWidth, all.size() - begin));
    slid.Fill(lanes, all.back().frames);
    const auto first = std::ranges::lower_bound(all, lanes.front().frames, {}, &Screened::frames);
    for (auto at = static_cast<std::size_t>(first - all.begin()); at < all.size(); ++at) {
      const Screened& other = all[at];
      const LanesSearch<kWidth> search(slid, material.outlines[at], other.frames);
      for (std::size_t lane = 0; lane < lanes.size(); ++lane) {
        const auto [low, high] = std::minmax(lanes[lane].rank, other.rank);
        if (low != high && lanes[lane].frames <= other.frames) {
          std::uint32_t& number = table.Of(low, high);
          number = std::min(number, search.HalfDistance(lane));
        }
      }
    }
  }
}

VOXTREL_WIDE void HoldAllWide(const Material& material, PairTable& table, const GoOn& goOn) {
  HoldAll<8>(material, table, goOn);
}
void HoldAllNarrow(const Material& material, PairTable& table, const GoOn& goOn) {
  HoldAll<kVectorsFast ? 4 : 1>(material, table, goOn);
}

}  // namespace

void FillOutlineDistances(std::span<const PreparedTemplate* const> sorted, PairTable& table,
                          const GoOn& goOn) {
  Material material;
  table.Fill(std::numeric_limits<std::uint32_t>::max());
  for (std::size_t rank = 0; rank < sorted.size(); ++rank) {
    const PreparedTemplate& of = *sorted[rank];
    if (of.IsOnGrid() && of.Frames() <= kMostFrames) {
      WriteOutline(of, material.outlines[material.count]);
      material.templates[material.count++] = {.of = &of, .frames = of.Frames(), .rank = rank};
      continue;
    }
    for (std::size_t other = 0; other < sorted.size(); ++other) {
      if (other != rank) {
        table.Of(std::min(rank, other), std::max(rank, other)) = 0;
      }
    }
  }
  HasWideVectors() ? HoldAllWide(material, table, goOn) : HoldAllNarrow(material, table, goOn);
}

}  // namespace voicemath
