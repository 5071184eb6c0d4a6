#include "backends/text/fill.h"

#include <cstddef>

namespace text {

std::string Fill(std::string_view utf8, std::initializer_list<std::string_view> values) {
  std::string filled;
  for (std::size_t at = 0; at < utf8.size(); ++at) {
    const bool mayBePlace = utf8[at] == '%' && at + 1 < utf8.size() && utf8[at + 1] >= '1';
    const auto place = mayBePlace ? static_cast<std::size_t>(utf8[at + 1] - '1') : values.size();
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
