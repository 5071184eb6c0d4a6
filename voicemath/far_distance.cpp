#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

#include "voicemath/template_pair.h"
#include "voicemath/vector_clones.h"

// How a short template is compared with one a thousand times as long.
//
// Taken as it is defined, each of thousands of shifts adds up all frames of the longer template,
// with every rounding. Here each shift costs only as much as the shorter template is long.
//
// One shift holds the first frame of the shorter template against all frames of the longer one
// before its place, its own frames against those at its place, and its last frame against all
// frames after: head, middle and tail, added in this order, each addition rounded.
//
// - The head of a shift is the head of the next shift, one frame shorter. All heads are one running
//   sum.
// - The middles are formed for several shifts side by side.
// - The tails cannot share a sum: each begins with another middle, and is rounded otherwise. But a
//   rounded sum x + t never falls as x rises. So for each place in a tail there is a largest x, the
//   allowance, with which the sum still ends below the best one. The allowance at a value t is the
//   largest x for which x + t, rounded, is within the allowance after it. One walk from the end to
//   the front gives all allowances. Only a shift whose middle ends within its allowance is added
//   up, and it is the new best one.
//
// The best shift is guessed first, from tails summed in double. Then few others become the best.

namespace voicemath {
namespace {

constexpr auto kPlacesAtOnce = static_cast<std::int32_t>(kFloatLanes);

/// A pair is far if the longer template has so many frames more. Words are never so long.
constexpr std::int32_t kFarFrames = 1000;

/// Blocks of shifts between two questions whether to go on.
constexpr std::int32_t kBlocksBetweenQuestions = 32;

/// The allowance that no sum is within.
constexpr float kNoAllowance = -1.0F;

/// The neighbours of a float that is not negative.
float Above(float x) { return std::bit_cast<float>(std::bit_cast<std::uint32_t>(x) + 1); }
float Below(float x) { return std::bit_cast<float>(std::bit_cast<std::uint32_t>(x) - 1); }

/// Returns the largest float x from 0 on for which x + t, rounded, is not above `allowance`, which
/// is not infinite. Returns kNoAllowance if there is none. `t` is not negative, or no number.
VOXTREL_INLINE float AllowanceBefore(float allowance, float t) {
  if (!(t <= allowance)) {
    return kNoAllowance;
  }
  // Sums up to half a step above the allowance are rounded down to it. The guess is at most a few
  // floats away from the result, since the difference is rounded once to double and once to float.
  const double reach = (static_cast<double>(allowance) + static_cast<double>(Above(allowance))) / 2;
  auto x = static_cast<float>(reach - static_cast<double>(t));
  while (x + t > allowance) {
    x = Below(x);
  }
  while (Above(x) + t <= allowance) {
    x = Above(x);
  }
  return x;
}

/// Returns the square of the difference of two values, rounded twice as everywhere.
VOXTREL_INLINE float Term(float a, float b) {
  const float difference = a - b;
  return difference * difference;
}

/// The search for the best shift of one pair. A shift is named by its place: how many frames of the
/// longer template come before the shorter one. Shifts at which the shorter one runs out at an end
/// have no place and are tried one by one.
class FarSearch {
 public:
  FarSearch(const Pair& pair, float best, std::span<float> sums)
      : m_shorter(pair.shorter), m_longer(pair.longer), m_best(best), m_sums(sums) {}

  [[nodiscard]] float Best() const { return m_best; }

  /// Adds up one shift as it is defined, from frame 0 on.
  VOXTREL_INLINE void TryRunOut(std::int32_t shift) {
    float sum = 0.0F;
    for (std::int32_t frame = 0; frame < m_longer.Frames() && sum < m_best; ++frame) {
      sum = AddFrame(sum, frame, std::clamp(frame + shift, 0, m_shorter.Frames() - 1));
    }
    m_best = sum < m_best ? sum : m_best;
  }

  /// Forms head and middle of all places. Returns false if `goOn` says stop.
  VOXTREL_INLINE bool SumMiddles(const GoOn& goOn) {
    float head = 0.0F;
    for (std::int32_t place = 0; place < Places(); place += kPlacesAtOnce) {
      if (place / kPlacesAtOnce % kBlocksBetweenQuestions == 0 && goOn && !goOn()) {
        return false;
      }
      std::array<float, kFloatLanes> heads;
      for (std::int32_t lane = 0; lane < kPlacesAtOnce; ++lane) {
        heads[static_cast<std::size_t>(lane)] = head;
        head = AddFrame(head, std::min(place + lane, m_longer.Frames() - 1), 0);
      }
      SumMiddle(place, heads);
    }
    return true;
  }

  /// Adds up the place that is likely the best one.
  VOXTREL_INLINE void TryLikeliest() {
    double tail = 0.0;
    double least = kMaxDistance;
    std::int32_t likeliest = 0;
    for (std::int32_t place = Places() - 1; place >= 0; --place) {
      const double sum = static_cast<double>(SumAt(place)) + tail;
      if (sum < least) {
        least = sum;
        likeliest = place;
      }
      for (std::size_t band = 0; band < kBandCount && place > 0; ++band) {
        tail += static_cast<double>(TailTerm(TailOf(place) - 1, band));
      }
    }
    AddTail(likeliest);
  }

  /// Adds up all places that can still win.
  VOXTREL_INLINE void TryAllowed() {
    if (m_best == 0.0F) {
      return;
    }
    float allowance = Below(m_best);
    for (std::int32_t place = Places() - 1; place >= 0; --place) {
      if (SumAt(place) <= allowance) {
        AddTail(place);
        if (m_best == 0.0F) {
          return;
        }
        allowance = Allowance(m_longer.Frames(), TailOf(place), Below(m_best));
      }
      if (place > 0) {
        allowance = Allowance(TailOf(place), TailOf(place) - 1, allowance);
      }
      if (allowance == kNoAllowance) {
        return;
      }
    }
  }

 private:
  [[nodiscard]] std::int32_t Places() const { return m_longer.Frames() - m_shorter.Frames() + 1; }
  /// Returns the first frame of the longer template after the shorter one.
  [[nodiscard]] std::int32_t TailOf(std::int32_t place) const { return place + m_shorter.Frames(); }
  [[nodiscard]] float& SumAt(std::int32_t place) { return m_sums[static_cast<std::size_t>(place)]; }

  VOXTREL_INLINE float AddFrame(float sum, std::int32_t frame, std::int32_t held) const {
    const float* values = m_longer.ShapeByFrame(frame);
    const float* slid = m_shorter.ShapeByFrame(held);
    for (std::size_t band = 0; band < kBandCount; ++band) {
      sum += Term(slid[band], values[band]);
    }
    return sum;
  }
  VOXTREL_INLINE float TailTerm(std::int32_t frame, std::size_t band) const {
    return Term(m_shorter.ShapeByFrame(m_shorter.Frames() - 1)[band],
                m_longer.ShapeByFrame(frame)[band]);
  }

  /// Adds the middles to the heads of kPlacesAtOnce places. Gives up when none can win, since sums
  /// never fall.
  VOXTREL_INLINE void SumMiddle(std::int32_t place, const std::array<float, kFloatLanes>& heads) {
    ShiftLanes sums;
    std::memcpy(&sums, heads.data(), sizeof sums);
    std::array<float, kFloatLanes> seen = heads;
    const auto canWin = [this](float sum) { return sum < m_best; };
    for (std::int32_t frame = 0; frame < m_shorter.Frames() && std::ranges::any_of(seen, canWin);) {
      const std::int32_t look = std::min(frame + kPlacesAtOnce, m_shorter.Frames());
      for (; frame < look; ++frame) {
        const float* slid = m_shorter.ShapeByFrame(frame);
        for (std::size_t band = 0; band < kBandCount; ++band) {
          const ShiftLanes values =
              *reinterpret_cast<const ShiftLanesInArray*>(m_longer.Shape(band, place + frame));
          const ShiftLanes differences = values - slid[band];
          const ShiftLanes squares = differences * differences;
          sums += squares;
        }
      }
      std::memcpy(seen.data(), &sums, sizeof sums);
    }
    std::memcpy(&SumAt(place), seen.data(), sizeof seen);
  }

  VOXTREL_INLINE void AddTail(std::int32_t place) {
    float sum = SumAt(place);
    const std::int32_t last = m_shorter.Frames() - 1;
    for (std::int32_t frame = TailOf(place); frame < m_longer.Frames() && sum < m_best; ++frame) {
      sum = AddFrame(sum, frame, last);
    }
    m_best = sum < m_best ? sum : m_best;
  }

  /// Returns the allowance at frame `to`, given the one at frame `from`, which is after it.
  VOXTREL_INLINE float Allowance(std::int32_t from, std::int32_t to, float allowance) const {
    for (std::int32_t frame = from; frame > to;) {
      --frame;
      for (std::size_t band = kBandCount; band-- > 0 && allowance != kNoAllowance;) {
        allowance = AllowanceBefore(allowance, TailTerm(frame, band));
      }
    }
    return allowance;
  }

  const PreparedTemplate& m_shorter;
  const PreparedTemplate& m_longer;
  float m_best;
  std::span<float> m_sums;  ///< Of head and middle, by place; or what cannot win.
};

}  // namespace

bool IsFar(const Pair& pair) {
  return pair.shorter.Frames() > 0 && !pair.shorter.IsSteady() &&
         pair.longer.Frames() - pair.shorter.Frames() >= kFarFrames;
}

std::size_t FarScratchSize(const Pair& pair) {
  return static_cast<std::size_t>(pair.longer.Frames() - pair.shorter.Frames()) + 1 + kFloatLanes;
}

VOXTREL_VECTOR_CLONES
float FarDistance(const Pair& pair, float bound, std::span<float> scratch, const GoOn& goOn) {
  FarSearch search(pair, bound, scratch);
  for (std::int32_t lead = 1; lead <= kLead; ++lead) {
    search.TryRunOut(lead);
    search.TryRunOut(pair.LowestShift() + kLead - lead);
  }
  if (search.Best() > 0.0F && search.SumMiddles(goOn)) {
    search.TryLikeliest();
    search.TryAllowed();
  }
  return search.Best();
}

}  // namespace voicemath
