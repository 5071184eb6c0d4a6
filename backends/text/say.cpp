#include "backends/text/say.h"

#include <cstddef>

#include "backends/text/utf.h"
#include "resources/translations.h"

namespace text {

std::string Say(std::u16string_view english, std::initializer_list<std::string_view> fillings) {
  const std::string said = ToUtf8(resources::Say(english));
  std::string filled;
  for (std::size_t at = 0; at < said.size(); ++at) {
    // One pass over the text: a filling that holds a "%1" itself stays as it is.
    const bool mayBePlace = said[at] == '%' && at + 1 < said.size() && said[at + 1] >= '1';
    const auto place = mayBePlace ? static_cast<std::size_t>(said[at + 1] - '1') : fillings.size();
    // A sign without a filling, such as that of "100%", is no place.
    if (place < fillings.size()) {
      filled += fillings.begin()[place];
      ++at;
    } else {
      filled += said[at];
    }
  }
  return filled;
}

}  // namespace text
