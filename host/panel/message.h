#pragma once

#include <QString>
#include <string_view>

namespace panel {

/// A text of resources/desktop_strings.h, for arg() to fill.
[[nodiscard]] inline QString Message(std::u16string_view text) {
  return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace panel
