#include "backends/text/names.h"

#include <cstddef>

#include "backends/text/utf.h"

namespace text {

bool SameName(std::u16string_view a, std::u16string_view b) {
  std::size_t atA = 0;
  std::size_t atB = 0;
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

}  // namespace text
