#pragma once

#include <QString>
#include <QTextDocument>
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

/// The text in the form that a tool tip needs, since a tool tip shows what looks like HTML as HTML.
[[nodiscard]] inline QString AsToolTip(const QString& text) {
  return Qt::mightBeRichText(text) ? QStringLiteral("<span style='white-space:pre-wrap'>%1</span>")
                                         .arg(text.toHtmlEscaped())
                                   : text;
}

/// The text in the form that a window's title needs, since "[*]" is the mark of a change there.
[[nodiscard]] inline QString AsWindowTitle(const QString& text) {
  QString escaped = text;
  return escaped.replace(QStringLiteral("[*]"), QStringLiteral("[*][*]"));
}

}  // namespace qt
