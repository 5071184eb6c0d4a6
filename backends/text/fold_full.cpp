#include <algorithm>
#include <iterator>

#include "backends/text/fold.h"

namespace text {
namespace {

struct Pair {
  char32_t character;
  char32_t folded;
};

constexpr Pair kPairs[] = {
#include "text/fold_pairs.inc"
};

}  // namespace

char32_t FoldCharacter(char32_t character) {
  const auto* const pair =
      std::lower_bound(std::begin(kPairs), std::end(kPairs), character,
                       [](const Pair& each, char32_t wanted) { return each.character < wanted; });
  return pair != std::end(kPairs) && pair->character == character ? pair->folded : character;
}

}  // namespace text
