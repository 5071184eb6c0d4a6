#include "platform/text/collation.h"

#include <unicode/ucol.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>

namespace text {
namespace {

using Collator = std::unique_ptr<UCollator, decltype(&ucol_close)>;

/// The collator of no language in particular. May be used by any number of threads, since nothing
/// changes it.
const UCollator* RootCollator() {
  static const Collator kCollator = [] {
    UErrorCode status = U_ZERO_ERROR;
    return Collator(ucol_open("", &status), &ucol_close);
  }();
  return kCollator.get();
}

std::int32_t Length(std::u16string_view text) {
  constexpr std::size_t kMax = std::numeric_limits<std::int32_t>::max();
  return static_cast<std::int32_t>(std::min(text.size(), kMax));
}

}  // namespace

std::strong_ordering CompareForDisplay(std::u16string_view a, std::u16string_view b) {
  if (const UCollator* collator = RootCollator()) {
    const UCollationResult order = ucol_strcoll(collator, a.data(), Length(a), b.data(), Length(b));
    if (order != UCOL_EQUAL) {
      return order == UCOL_LESS ? std::strong_ordering::less : std::strong_ordering::greater;
    }
  }
  return a <=> b;
}

}  // namespace text
