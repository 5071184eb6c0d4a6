#include "host/session/say.h"

#include "backends/text/fill.h"
#include "backends/text/utf.h"
#include "resources/translations.h"

namespace session {

std::string Say(std::u16string_view english, std::initializer_list<std::string_view> fillings) {
  return text::Fill(text::ToUtf8(resources::Say(english)), fillings);
}

}  // namespace session
