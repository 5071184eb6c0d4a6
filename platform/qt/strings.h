#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace qt {

[[nodiscard]] inline QString ToQString(std::u16string_view text) {
  return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

[[nodiscard]] inline std::u16string ToText(const QString& text) { return text.toStdU16String(); }

/// The text as a widget has to be given it that takes "&" for the mark of a mnemonic.
[[nodiscard]] inline QString WithoutMnemonic(const QString& text) {
  QString escaped = text;
  return escaped.replace(u'&', QStringLiteral("&&"));
}

}  // namespace qt
