#include "backends/text/names.h"

#include <algorithm>
#include <cstddef>

#include "backends/text/utf.h"

// Names of the device: without letter case, with backslashes, and with "*" and "?" in patterns.
namespace text {
namespace {

using namespace std::literals;

bool IsPlainName(std::u16string_view part) {
  // On the host a "/" separates folders and a NUL ends a path, so such a part would lead elsewhere.
  return !part.empty() && part != u"." && part != u".." &&
         part.find_first_of(u"/\0"sv) == std::u16string_view::npos;
}

}  // namespace

bool SameName(std::u16string_view a, std::u16string_view b) {
  std::size_t atA = 0;
  std::size_t atB = 0;
  // Character by character, since folding keeps their number here and a copy of both is not needed.
  while (atA < a.size() && atB < b.size()) {
    if (FoldCharacter(NextCharacter(a, atA)) != FoldCharacter(NextCharacter(b, atB))) {
      return false;
    }
  }
  return atA == a.size() && atB == b.size();
}

std::u16string FoldName(std::u16string_view name) {
  std::u16string folded;
  folded.reserve(name.size());
  for (std::size_t at = 0; at < name.size();) {
    AppendCharacter(folded, FoldCharacter(NextCharacter(name, at)));
  }
  return folded;
}

// Goes through both texts once. At a "*" it first assumes that the star stands for nothing. If the
// rest does not match, it goes back to the latest star and lets it stand for one character more.
// Earlier stars need not be tried again: what the latest one can match includes what they could.
bool MatchesPattern(std::u16string_view name, std::u16string_view pattern) {
  std::size_t atName = 0;
  std::size_t atPattern = 0;
  std::size_t afterStar = std::u16string_view::npos;
  std::size_t starEnd = 0;
  while (atName < name.size()) {
    if (atPattern < pattern.size() && pattern[atPattern] == u'*') {
      afterStar = ++atPattern;
      starEnd = atName;
      continue;
    }
    if (atPattern < pattern.size()) {
      std::size_t nextName = atName;
      std::size_t nextPattern = atPattern;
      const char32_t inName = NextCharacter(name, nextName);
      const char32_t inPattern = NextCharacter(pattern, nextPattern);
      if (inPattern == U'?' || FoldCharacter(inName) == FoldCharacter(inPattern)) {
        atName = nextName;
        atPattern = nextPattern;
        continue;
      }
    }
    if (afterStar == std::u16string_view::npos) {
      return false;
    }
    static_cast<void>(NextCharacter(name, starEnd));
    atName = starEnd;
    atPattern = afterStar;
  }
  while (atPattern < pattern.size() && pattern[atPattern] == u'*') {
    ++atPattern;
  }
  return atPattern == pattern.size();
}

bool HasWildcards(std::u16string_view pattern) {
  return pattern.find_first_of(u"*?") != std::u16string_view::npos;
}

bool IsDevicePath(std::u16string_view path) { return path.starts_with(u'\\'); }

std::optional<std::vector<std::u16string_view>> SplitDevicePath(std::u16string_view path) {
  if (!IsDevicePath(path)) {
    return std::nullopt;
  }
  std::vector<std::u16string_view> parts;
  for (std::size_t start = 1; start <= path.size();) {
    const std::size_t end = std::min(path.find(u'\\', start), path.size());
    const std::u16string_view part = path.substr(start, end - start);
    if (!IsPlainName(part)) {
      return std::nullopt;
    }
    parts.push_back(part);
    start = end + 1;
  }
  return parts;
}

}  // namespace text
