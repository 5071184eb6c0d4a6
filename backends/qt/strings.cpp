#include "backends/qt/strings.h"

#include <QRegularExpression>
#include <algorithm>
#include <set>

namespace qt {
namespace {

/// Returns whether a letter is a key of its own on the keyboards of its alphabet.
[[nodiscard]] bool IsKey(QChar letter) {
  const QChar lower = letter.toLower();
  switch (letter.script()) {
    case QChar::Script_Latin:
      return lower >= u'a' && lower <= u'z';
    case QChar::Script_Cyrillic:
    case QChar::Script_Greek:
      return letter.isLetter() && letter.decomposition().isEmpty();
    default:
      return false;
  }
}

[[nodiscard]] bool IsInitial(const QString& text, qsizetype place) {
  return place == 0 || !text.at(place - 1).isLetter();
}

/// Returns the place of the first initial that is free, else of the first other letter that is
/// free.
[[nodiscard]] std::optional<qsizetype> Choose(const QString& text, const std::set<QChar>& taken) {
  std::optional<qsizetype> other;
  for (qsizetype place = 0; place < text.size(); ++place) {
    const QChar letter = text.at(place);
    if (!IsKey(letter) || taken.contains(letter.toLower())) {
      continue;
    }
    if (IsInitial(text, place)) {
      return place;
    }
    other = other ? other : place;
  }
  return other;
}

}  // namespace

QString WithNumbersInOrder(const QString& text) {
  const bool isPartlyFromTheRight = std::ranges::any_of(text, [](QChar unit) {
    return unit.direction() == QChar::DirR || unit.direction() == QChar::DirAL;
  });
  if (!isPartlyFromTheRight) {
    return text;
  }
  // Digits of any script, with what stands between the blocks of a number, and dialled signs.
  static const QRegularExpression kNumber(
      QStringLiteral("([+*#(]*\\d(?:[\\d*#)+]|[ ()./,;-]+(?=[\\d*#+]))*)"),
      QRegularExpression::UseUnicodePropertiesOption);
  // Unicode's isolates: what stands between them is ordered from the left, and the text around them
  // as if one sign stood there.
  constexpr QChar kBeginFromTheLeft(0x2066);
  constexpr QChar kEnd(0x2069);
  QString marked = text;
  return marked.replace(kNumber, kBeginFromTheLeft + QStringLiteral("\\1") + kEnd);
}

std::vector<std::optional<qsizetype>> ChooseMnemonics(const std::vector<QString>& texts) {
  std::set<QChar> taken;
  std::vector<std::optional<qsizetype>> places;
  places.reserve(texts.size());
  for (const QString& text : texts) {
    // The buttons choose in their order, so the first ones get the letters that users expect.
    const auto place = Choose(text, taken);
    if (place) {
      taken.insert(text.at(*place).toLower());
    }
    places.push_back(place);
  }
  return places;
}

QString WithMnemonic(const QString& text, std::optional<qsizetype> place) {
  if (!place) {
    return WithoutMnemonic(text);
  }
  // A "&" of the text itself is doubled by WithoutMnemonic. The single one marks the next letter.
  return WithoutMnemonic(text.left(*place)) + u'&' + WithoutMnemonic(text.mid(*place));
}

}  // namespace qt
