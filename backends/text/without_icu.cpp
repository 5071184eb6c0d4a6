// The order of texts for builds with nothing that knows it. They are cross-built programs that
// check the arithmetic on another machine and use ASCII names only. No program for users is built
// with this.

#include "backends/text/collation.h"

namespace text {

std::strong_ordering CompareForDisplay(std::u16string_view a, std::u16string_view b) {
  return a <=> b;
}

}  // namespace text
