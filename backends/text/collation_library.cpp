#include "backends/text/collation_library.h"

#include <unicode/ucol.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>
#include <type_traits>

// The one function that the library exports.
extern "C" __attribute__((visibility("default"))) int VoxtrelCompareForDisplay(
    std::u16string_view a, std::u16string_view b);

namespace {

static_assert(std::is_same_v<decltype(VoxtrelCompareForDisplay), text::CompareFunction>);

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

int VoxtrelCompareForDisplay(std::u16string_view a, std::u16string_view b) {
  const UCollator* const collator = RootCollator();
  return collator == nullptr
             ? a.compare(b)
             : static_cast<int>(ucol_strcoll(collator, a.data(), Length(a), b.data(), Length(b)));
}
