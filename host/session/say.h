#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace session {

/// Returns one of our own texts in the language of the process, as UTF-8. The first of `fillings`
/// takes the place of "%1", the next that of "%2". A filling may hold such a sign itself.
[[nodiscard]] std::string Say(std::u16string_view english,
                              std::initializer_list<std::string_view> fillings = {});

}  // namespace session
