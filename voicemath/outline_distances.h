#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "voicemath/nearest_neighbours.h"
#include "voicemath/prepared_template.h"
#include "voicemath/template_distance.h"

namespace voicemath {

/// A number for each two of kMostTemplates templates.
class PairTable {
 public:
  void Fill(std::uint32_t number) { m_numbers.fill(number); }
  /// Returns the number of two of them, of which `a` is the lower one.
  [[nodiscard]] std::uint32_t& Of(std::size_t a, std::size_t b) {
    return m_numbers[b * (b - 1) / 2 + a];
  }

 private:
  std::array<std::uint32_t, kMostTemplates*(kMostTemplates - 1) / 2> m_numbers;
};

/// Fills the table for at most kMostTemplates templates, sorted by their frames. A number rises
/// with the distance of two templates, roughly, and costs a fraction of it. It is not above their
/// grid distance at any shift, in either order if they are of the same length. It is 0 if it says
/// nothing about these two. If `goOn` says stop, the table means nothing.
void FillOutlineDistances(std::span<const PreparedTemplate* const> sorted, PairTable& table,
                          const GoOn& goOn);

}  // namespace voicemath
