#include "backends/text/collation.h"

#include "backends/loading/loaded_library.h"
#include "backends/text/ascii_order.h"
#include "backends/text/collation_library.h"

namespace text {
namespace {

/// Null where the library cannot be had; texts of other scripts then stand by their code units.
CompareFunction* GetCompare() {
  static auto* const kCompare = reinterpret_cast<CompareFunction*>(
      loading::LoadDoor(kCollationLibrary, "text", kCompareName).address);
  return kCompare;
}

}  // namespace

std::strong_ordering CompareForDisplay(std::u16string_view a, std::u16string_view b) {
  if (IsPrintableAscii(a) && IsPrintableAscii(b)) {
    return CompareAscii(a, b);
  }
  CompareFunction* const compare = GetCompare();
  const std::strong_ordering order = compare == nullptr ? a <=> b : compare(a, b) <=> 0;
  return order == std::strong_ordering::equal ? a <=> b : order;
}

}  // namespace text
