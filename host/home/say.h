#pragma once

#include <QString>
#include <string_view>

#include "backends/qt/strings.h"
#include "language/say.h"

namespace home {

/// Returns one of our own texts, in the language of the desktop, for a widget. "%1" and so on are
/// still in it.
[[nodiscard]] inline QString Say(std::u16string_view english) {
  return qt::ToQString(language::Say(english));
}

}  // namespace home
