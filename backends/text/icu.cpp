#include "backends/text/collation.h"

#include <unicode/uchar.h>
#include <unicode/ucol.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>

#include "backends/text/names.h"

namespace text {
namespace {

// Letter case and order, from the library that knows every script. Printable ASCII has tables of
// its own here, since most texts are plain and the library's tables are large.

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

using Collator = std::unique_ptr<UCollator, decltype(&ucol_close)>;

/// The collator of no language in particular. Any number of threads may use it, since nothing
/// changes it. It is made when something is first compared: its tables take time and memory that
/// most commands need not spend. Null if it cannot be made.
const UCollator* GetRootCollator() {
  static const Collator kCollator = [] {
    UErrorCode status = U_ZERO_ERROR;
    return Collator(ucol_open("", &status), &ucol_close);
  }();
  return kCollator.get();
}

std::int32_t LengthOf(std::u16string_view text) {
  constexpr std::size_t kMax = std::numeric_limits<std::int32_t>::max();
  return static_cast<std::int32_t>(std::min(text.size(), kMax));
}

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

char32_t FoldCharacter(char32_t character) {
  return static_cast<char32_t>(u_foldCase(static_cast<UChar32>(character), U_FOLD_CASE_DEFAULT));
}

std::strong_ordering CompareForDisplay(std::u16string_view a, std::u16string_view b) {
  if (IsPrintableAscii(a) && IsPrintableAscii(b)) {
    return CompareAscii(a, b);
  }
  const UCollator* const collator = GetRootCollator();
  const int order = collator == nullptr
                        ? 0
                        : ucol_strcoll(collator, a.data(), LengthOf(a), b.data(), LengthOf(b));
  // The collator holds some different texts equal, such as two spellings of one accented letter.
  return order == 0 ? a <=> b : order <=> 0;
}

}  // namespace text
