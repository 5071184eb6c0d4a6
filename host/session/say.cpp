#include "host/session/say.h"

#include <cstddef>

#include "backends/text/utf.h"
#include "resources/translations.h"

namespace session {

std::string Say(std::u16string_view english, std::initializer_list<std::string_view> fillings) {
  const std::string text = text::ToUtf8(resources::Say(english));
  std::string said;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const std::size_t place =
        text[at] == '%' && at + 1 < text.size() ? static_cast<std::size_t>(text[at + 1] - '1') : 9;
    if (place < fillings.size()) {
      said += *(fillings.begin() + place);
      ++at;
    } else {
      said += text[at];
    }
  }
  return said;
}

}  // namespace session
