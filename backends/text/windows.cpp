#include <windows.h>

#include <limits>

#include "backends/text/collation.h"
#include "backends/text/names.h"
#include "backends/text/utf.h"

namespace text {
namespace {

// Letter case and order as Windows knows them, in no language in particular. Printable ASCII has
// the same order as on other systems.

/// Returns `character` in the other case. Returns it as it is if it has none, or more than one
/// character for it.
char32_t Map(char32_t character, DWORD how) {
  std::u16string from;
  AppendCharacter(from, character);
  std::u16string to(from.size(), u'\0');
  const int length =
      ::LCMapStringEx(LOCALE_NAME_INVARIANT, how, reinterpret_cast<const wchar_t*>(from.data()),
                      static_cast<int>(from.size()), reinterpret_cast<wchar_t*>(to.data()),
                      static_cast<int>(to.size()), nullptr, nullptr, 0);
  if (length != static_cast<int>(from.size())) {
    return character;
  }
  std::size_t at = 0;
  const char32_t mapped = NextCharacter(to, at);
  return at == to.size() ? mapped : character;
}

int LengthOf(std::u16string_view text) {
  constexpr std::size_t kMax = std::numeric_limits<int>::max();
  return static_cast<int>(text.size() < kMax ? text.size() : kMax);
}

}  // namespace

// Folded by way of the capital, so that both small sigmas of Greek are one letter.
char32_t FoldCharacter(char32_t character) {
  constexpr char32_t kFirstBeyondAscii = 0x80;
  if (character < kFirstBeyondAscii) {
    return character >= U'A' && character <= U'Z' ? character - U'A' + U'a' : character;
  }
  if (IsSurrogate(character)) {
    return character;
  }
  return Map(Map(character, LCMAP_UPPERCASE), LCMAP_LOWERCASE);
}

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
