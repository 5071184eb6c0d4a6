#include "host/home/likeness.h"

#include <algorithm>
#include <map>
#include <utility>

namespace home {
namespace {

using Chain = std::vector<std::size_t>;

/// Turns the chain so that the tag stands at its end, if it stands at its beginning.
void TurnToEnd(Chain& chain, std::size_t tag) {
  if (chain.back() != tag && chain.front() == tag) {
    std::ranges::reverse(chain);
  }
}

}  // namespace

std::vector<AlikePair> FindAlikePairs(const std::vector<Tag>& tags) {
  std::map<std::pair<std::size_t, std::size_t>, AlikePair> found;
  const auto add = [&](std::size_t tag, const maintenance::AlikeTag& other, bool isTooAlike) {
    if (other.index >= tags.size() || other.index == tag) {
      return;
    }
    const auto [first, second] = std::minmax(tag, other.index);
    AlikePair& pair =
        found.try_emplace({first, second}, AlikePair{first, second, other.distance, false})
            .first->second;
    // Each of two tags has its own distance from the other one, which differ a little.
    pair.distance = std::min(pair.distance, other.distance);
    pair.isTooAlike = pair.isTooAlike || isTooAlike;
  };
  for (std::size_t i = 0; i < tags.size(); ++i) {
    if (tags[i].quality.nearest) {
      add(i, *tags[i].quality.nearest, false);
    }
    for (const maintenance::AlikeTag& alike : tags[i].quality.tooAlike) {
      add(i, alike, true);
    }
  }
  std::vector<AlikePair> pairs;
  pairs.reserve(found.size());
  for (const auto& [places, pair] : found) {
    pairs.push_back(pair);
  }
  std::ranges::stable_sort(pairs, {}, &AlikePair::distance);
  return pairs;
}

// Each tag begins as a chain of its own. The pairs, the most alike first, join the chains of their
// two tags, at the ends where these stand if they stand at ends. The chain that was joined earlier
// takes the other one, so that of the most alike pair comes first in the end.
std::vector<std::size_t> OrderByLikeness(std::size_t count, const std::vector<AlikePair>& pairs) {
  std::vector<Chain> chains(count);
  std::vector<std::size_t> chainOf(count);
  for (std::size_t i = 0; i < count; ++i) {
    chains[i] = {i};
    chainOf[i] = i;
  }
  std::vector<std::size_t> joined;  // Chains, in the order in which they were first joined.
  const auto age = [&joined](std::size_t chain) { return std::ranges::find(joined, chain); };
  for (const AlikePair& pair : pairs) {
    std::size_t end = pair.first;
    std::size_t begin = pair.second;
    if (chainOf[end] == chainOf[begin]) {
      continue;
    }
    if (age(chainOf[begin]) < age(chainOf[end])) {
      std::swap(end, begin);
    }
    Chain& to = chains[chainOf[end]];
    Chain from = std::exchange(chains[chainOf[begin]], {});
    if (age(chainOf[end]) == joined.end()) {
      joined.push_back(chainOf[end]);
    }
    TurnToEnd(to, end);
    TurnToEnd(from, begin);
    for (const std::size_t tag : from) {
      chainOf[tag] = chainOf[end];
    }
    to.insert(to.end(), from.rbegin(), from.rend());
  }
  Chain order;
  for (std::size_t i = 0; i < count; ++i) {
    joined.push_back(i);
  }
  for (const std::size_t chain : joined) {
    order.insert(order.end(), chains[chain].begin(), chains[chain].end());
    chains[chain].clear();
  }
  return order;
}

}  // namespace home
