#include "backends/text/collation.h"

#include <unicode/ucol.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>

namespace text {
namespace {

// The order of texts, from the library that knows every script. Its tables are large, and most
// texts are plain, so printable ASCII has an order of its own.

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
