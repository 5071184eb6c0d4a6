#include <windows.h>

#include <limits>

#include "backends/text/collation.h"

namespace text {
namespace {

// The order of texts as Windows knows it, in no language in particular. Printable ASCII has
// the same order as on other systems.

int LengthOf(std::u16string_view text) {
  constexpr std::size_t kMax = std::numeric_limits<int>::max();
  return static_cast<int>(text.size() < kMax ? text.size() : kMax);
}

}  // namespace

std::strong_ordering CompareForDisplay(std::u16string_view a, std::u16string_view b) {
  if (IsPrintableAscii(a) && IsPrintableAscii(b)) {
    return CompareAscii(a, b);
  }
  // 1, 2 and 3 for less, equal and greater; 0 if it cannot compare them.
  const int order = ::CompareStringEx(
      LOCALE_NAME_INVARIANT, SORT_STRINGSORT, reinterpret_cast<const wchar_t*>(a.data()),
      LengthOf(a), reinterpret_cast<const wchar_t*>(b.data()), LengthOf(b), nullptr, nullptr, 0);
  return order == 0 || order == CSTR_EQUAL ? a <=> b : order <=> CSTR_EQUAL;
}

}  // namespace text
