#include "backends/text/collation.h"

namespace text {

std::strong_ordering CompareForDisplay(std::u16string_view a, std::u16string_view b) {
  return a <=> b;
}

}  // namespace text
