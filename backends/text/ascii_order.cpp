#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "backends/text/collation.h"

namespace text {
namespace {

/// All printable characters of ASCII in the order of the collation. The case of letters counts only
/// if all else is equal. The small one is then the first.
constexpr std::u16string_view kInOrder =
    u" _-,;:!?.'\"()[]{}@*/\\&#%`^+<=>|~$0123456789abcdefghijklmnopqrstuvwxyz";

constexpr std::size_t kAsciiSize = 128;
constexpr std::size_t kCaseDistance = u'a' - u'A';

constexpr std::array<std::uint8_t, kAsciiSize> MakeRanks() {
  std::array<std::uint8_t, kAsciiSize> ranks{};
  for (std::size_t i = 0; i < kInOrder.size(); ++i) {
    const char16_t c = kInOrder[i];
    ranks[c] = static_cast<std::uint8_t>(i);
    if (c >= u'a' && c <= u'z') {
      ranks[c - kCaseDistance] = static_cast<std::uint8_t>(i);
    }
  }
  return ranks;
}

constexpr std::array<std::uint8_t, kAsciiSize> kRanks = MakeRanks();

}  // namespace

bool IsPrintableAscii(std::u16string_view text) {
  return std::all_of(text.begin(), text.end(), [](char16_t c) { return c >= u' ' && c <= u'~'; });
}

std::strong_ordering CompareAscii(std::u16string_view a, std::u16string_view b) {
  const std::strong_ordering order = std::lexicographical_compare_three_way(
      a.begin(), a.end(), b.begin(), b.end(),
      [](char16_t x, char16_t y) { return kRanks[x] <=> kRanks[y]; });
  // Of two letters that differ in nothing but case the small one has the higher code.
  return order == std::strong_ordering::equal ? b <=> a : order;
}

}  // namespace text
