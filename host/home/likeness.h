#pragma once

#include <cstddef>
#include <vector>

#include "host/home/shelf.h"

namespace home {

/// Two tags whose names sound alike, by their places in Shelf::tags.
struct AlikePair {
  std::size_t first = 0;  ///< Smaller than `second`.
  std::size_t second = 0;
  float distance = 0;
  bool isTooAlike = false;  ///< The dialer may take one for the other.
};

/// Returns each tag with the one that is most alike, as the Test dialog finds it, and all pairs
/// that are too alike. Each pair is there once, the most alike first.
[[nodiscard]] std::vector<AlikePair> FindAlikePairs(const std::vector<Tag>& tags);

/// Returns the places of `count` tags in an order in which tags that are alike stand close to each
/// other, the most alike pair first.
[[nodiscard]] std::vector<std::size_t> OrderByLikeness(std::size_t count,
                                                       const std::vector<AlikePair>& pairs);

}  // namespace home
