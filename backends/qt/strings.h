#pragma once

#include <QString>
#include <QTextDocument>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "resources/translations.h"

// Texts in the forms that the library wants. A widget, a tool tip and a window title each interpret
// some characters, but texts of a page are data.

namespace qt {

[[nodiscard]] inline QString ToQString(std::u16string_view text) {
  return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

/// Returns one of our own texts in the language of the desktop. "%1" and so on are still in it.
[[nodiscard]] inline QString Say(std::u16string_view english) {
  return ToQString(resources::Say(english));
}

[[nodiscard]] inline std::u16string ToText(const QString& text) { return text.toStdU16String(); }

/// Returns the text for a widget that takes "&" for the mark of a mnemonic.
[[nodiscard]] inline QString WithoutMnemonic(const QString& text) {
  QString escaped = text;
  return escaped.replace(u'&', QStringLiteral("&&"));
}

/// Returns the text for one line of a list. Next to a name that is written from right to left, the
/// blocks of a telephone number would stand in the wrong order ("0144 555 50 972+"). So each number
/// stands between marks that set it apart. Other texts come back as they are.
[[nodiscard]] QString WithNumbersInOrder(const QString& text);

/// Returns the text for a tool tip, which would show text that looks like HTML as HTML.
[[nodiscard]] inline QString AsToolTip(const QString& text) {
  return Qt::mightBeRichText(text) ? QStringLiteral("<span style='white-space:pre-wrap'>%1</span>")
                                         .arg(text.toHtmlEscaped())
                                   : text;
}

/// Returns the text for the title of a window, which takes "[*]" for the mark of a change.
[[nodiscard]] inline QString AsWindowTitle(const QString& text) {
  QString escaped = text;
  return escaped.replace(QStringLiteral("[*]"), QStringLiteral("[*][*]"));
}

/// Returns for each text the place of the letter that presses its button together with Alt.
/// Initials of words come first, and no letter is used twice. A text has no place if no letter is
/// left in it that is a key on a keyboard. In languages without an alphabet the texts themselves
/// end with such a letter in brackets, as is usual there.
[[nodiscard]] std::vector<std::optional<qsizetype>> ChooseMnemonics(
    const std::vector<QString>& texts);

/// Returns the text for a button, with the mnemonic marked.
[[nodiscard]] QString WithMnemonic(const QString& text, std::optional<qsizetype> place);

}  // namespace qt
