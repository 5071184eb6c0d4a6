#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <utility>
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

/// An index of things by the numbers of contacts, in one run of memory, so that a hundred thousand
/// of them cost as much each as ten thousand do. A number is not 0.
class OidIndex {
 public:
  static constexpr std::uint32_t kNone = static_cast<std::uint32_t>(-1);

  /// Returns whether the number is new. Changes nothing otherwise.
  bool Add(std::int32_t oid, std::size_t thing = 0) {
    if (4 * (m_count + 1) > 3 * m_slots.size()) {
      Grow();
    }
    Slot& slot = m_slots[SlotOf(oid)];
    if (slot.oid == oid) {
      return false;
    }
    slot = {oid, static_cast<std::uint32_t>(thing)};
    ++m_count;
    return true;
  }

  /// Returns what was added with the number. Returns kNone if nothing was.
  [[nodiscard]] std::uint32_t Find(std::int32_t oid) const {
    if (oid == 0 || m_slots.empty()) {
      return kNone;
    }
    const Slot& slot = m_slots[SlotOf(oid)];
    return slot.oid == oid ? slot.thing : kNone;
  }
  [[nodiscard]] bool Holds(std::int32_t oid) const { return Find(oid) != kNone; }

 private:
  struct Slot {
    std::int32_t oid = 0;  ///< 0 if it is free.
    std::uint32_t thing = 0;
  };

  /// Returns the slot of the number, or the free one for it.
  [[nodiscard]] std::size_t SlotOf(std::int32_t oid) const {
    // The high bits of the product depend on all bits of the number.
    constexpr std::uint32_t kOddFactor = 0x9E3779B9;
    const std::uint32_t hash = static_cast<std::uint32_t>(oid) * kOddFactor;
    std::size_t at = (hash ^ hash >> 16) & (m_slots.size() - 1);
    while (m_slots[at].oid != 0 && m_slots[at].oid != oid) {
      at = (at + 1) & (m_slots.size() - 1);
    }
    return at;
  }

  void Grow() {
    constexpr std::size_t kFewestSlots = 16;
    const std::vector<Slot> former =
        std::exchange(m_slots, std::vector<Slot>(std::max(kFewestSlots, 2 * m_slots.size())));
    for (const Slot& slot : former) {
      if (slot.oid != 0) {
        m_slots[SlotOf(slot.oid)] = slot;
      }
    }
  }

  std::vector<Slot> m_slots;  ///< A power of two of them, at most three quarters taken.
  std::size_t m_count = 0;
};

}  // namespace vcard
