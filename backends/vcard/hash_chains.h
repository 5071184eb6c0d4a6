#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace vcard {

/// An index of numbered things by their hashes, in two words for each and without a node of its own
/// for any. Things with one place in it form a chain; those of another key are to be passed over.
/// Equal things are no danger to the time as long as a search ends at the first of them.
class HashChains {
 public:
  static constexpr std::uint32_t kEnd = static_cast<std::uint32_t>(-1);

  /// For things with numbers below `count`.
  explicit HashChains(std::size_t count)
      : m_heads(std::bit_ceil(count + 1), kEnd), m_next(count, kEnd) {}

  /// Puts a thing, which is in no chain, at the front of its chain.
  void AddInFront(std::size_t hash, std::size_t thing) {
    std::uint32_t& head = At(hash);
    m_next[thing] = head;
    head = static_cast<std::uint32_t>(thing);
  }

  /// Returns the place that holds the number of the first thing of a chain. kEnd ends the chain. To
  /// take a thing out, Next of it is written to the place that holds its number.
  [[nodiscard]] std::uint32_t& At(std::size_t hash) { return m_heads[hash & (m_heads.size() - 1)]; }
  [[nodiscard]] std::uint32_t& Next(std::uint32_t thing) { return m_next[thing]; }

 private:
  std::vector<std::uint32_t> m_heads;
  std::vector<std::uint32_t> m_next;
};

}  // namespace vcard
