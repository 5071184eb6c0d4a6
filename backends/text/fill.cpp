#include "backends/text/fill.h"

#include <cstddef>

namespace text {

std::string Fill(std::string_view utf8, std::initializer_list<std::string_view> values) {
  std::string filled;
  for (std::size_t at = 0; at < utf8.size(); ++at) {
    // One pass over the text: a value that holds a "%1" itself stays as it is.
    const bool mayBePlace = utf8[at] == '%' && at + 1 < utf8.size() && utf8[at + 1] >= '1';
    const auto place = mayBePlace ? static_cast<std::size_t>(utf8[at + 1] - '1') : values.size();
    // A sign without a value, such as that of "100%", is no place.
    if (place < values.size()) {
      filled += values.begin()[place];
      ++at;
    } else {
      filled += utf8[at];
    }
  }
  return filled;
}

}  // namespace text
