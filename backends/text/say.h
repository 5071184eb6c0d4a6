#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace text {

/// Returns one of our own texts in the language of the process (resources::Say), as UTF-8. The
/// first of `fillings` takes the place of "%1", and so on up to "%9". A place without a filling
/// stays. A filling may hold such a sign itself.
[[nodiscard]] std::string Say(std::u16string_view english,
                              std::initializer_list<std::string_view> fillings = {});

}  // namespace text
