#include "backends/text/printable.h"

#include "backends/text/utf.h"

// What a terminal must not get: control characters, and marks that turn the direction of the text
// around. Names of contacts, files and devices may hold either.
namespace text {
namespace {

[[nodiscard]] bool IsBetween(char16_t unit, char16_t first, char16_t last) {
  return unit >= first && unit <= last;
}

/// The marks, embeddings, overrides and isolates, and the older characters of that kind.
[[nodiscard]] bool IsMarkOfDirection(char16_t unit) {
  return unit == u'\x61C' || IsBetween(unit, u'\x200E', u'\x200F') ||
         IsBetween(unit, u'\x202A', u'\x202E') || IsBetween(unit, u'\x2066', u'\x206F');
}

}  // namespace

bool IsCommand(char16_t unit) {
  return unit < u' ' || IsBetween(unit, u'\x7F', u'\x9F') || IsMarkOfDirection(unit) ||
         IsBetween(unit, u'\x2028', u'\x2029');
}

std::string Printable(std::string_view utf8) {
  std::u16string printable;
  for (const char16_t unit : FromUtf8(utf8)) {
    // Such a mark has no width, so it goes without a blank in its place.
    if (IsMarkOfDirection(unit)) {
      continue;
    }
    const bool stays = unit == u'\n' || unit == u'\t' || !IsCommand(unit);
    printable += stays ? unit : u' ';
  }
  return ToUtf8(printable);
}

}  // namespace text
