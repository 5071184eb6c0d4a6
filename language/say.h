#pragma once

#include <string_view>

namespace language {

/// Returns one of our own English texts in the language that was chosen. Returns the text itself if
/// there is no translation. The texts that a language file may hold follow Texts and not this.
[[nodiscard]] std::u16string_view Say(std::u16string_view english);

}  // namespace language
