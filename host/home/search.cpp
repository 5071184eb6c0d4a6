#include "host/home/search.h"

#include <algorithm>

namespace home {
namespace {

/// Returns the text without case and without marks on its letters. Digits of every script become
/// those of ASCII.
QString Fold(const QString& text) {
  if (std::ranges::all_of(text, [](QChar unit) { return unit.unicode() < 0x80; })) {
    return text.toLower();  // The same, and much sooner: most names of thousands are so.
  }
  const QString apart = text.normalized(QString::NormalizationForm_KD);
  QString folded;
  folded.reserve(apart.size());
  for (const QChar unit : apart) {
    if (unit.isDigit()) {
      folded.append(QChar(u'0' + unit.digitValue()));
    } else if (unit.category() != QChar::Mark_NonSpacing &&
               unit.category() != QChar::Other_Format) {
      folded.append(unit);
    }
  }
  // Only the way over capital letters makes "ss" of a sharp s.
  return folded.toUpper().toCaseFolded();
}

/// Signs that people write between the digits of a number.
bool IsBetweenDigits(QChar unit) { return QStringLiteral(" \t\u00A0()./-").contains(unit); }

/// Returns the digits of a folded text with the signs that are dialled. Returns an empty text if
/// there is a letter in it.
QString DigitsOf(const QString& folded) {
  QString digits;
  for (const QChar unit : folded) {
    if (unit.isDigit() || unit == u'+' || unit == u'*' || unit == u'#') {
      digits.append(unit);
    } else if (!IsBetweenDigits(unit)) {
      return {};
    }
  }
  return digits;
}

}  // namespace

SearchWords::SearchWords(const QString& typed)
    : m_words(Fold(typed).simplified().split(u' ', Qt::SkipEmptyParts)) {
  std::ranges::transform(m_words, std::back_inserter(m_numbers), DigitsOf);
}

SearchLine::SearchLine(const QStringList& texts, const QStringList& numbers)
    : m_text(Fold((texts + numbers).join(u'\n'))) {
  for (const QString& number : numbers) {
    m_numbers += DigitsOf(Fold(number)) + u'\n';
  }
}

bool SearchLine::Matches(const SearchWords& words) const {
  for (qsizetype i = 0; i < words.m_words.size(); ++i) {
    const QString& number = words.m_numbers.at(i);
    if (!m_text.contains(words.m_words.at(i)) &&
        (number.isEmpty() || !m_numbers.contains(number))) {
      return false;
    }
  }
  return true;
}

}  // namespace home
