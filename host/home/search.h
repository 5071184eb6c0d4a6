#pragma once

#include <QString>
#include <QStringList>
#include <span>

namespace home {

// A search by words: each word is found somewhere in the line, in any order. Letter case and
// accents count for nothing. A number is found with or without the spaces and signs between its
// digits, and whatever the script of the digits.

/// What the user looks for.
class SearchWords {
 public:
  explicit SearchWords(const QString& typed);

  [[nodiscard]] bool IsEmpty() const { return m_words.isEmpty(); }

 private:
  friend class SearchLine;
  QStringList m_words;    ///< Folded.
  QStringList m_numbers;  ///< The digits of each word that may be part of a number, else empty.
};

/// A line that can be found. What takes time is done once, when it is made.
class SearchLine {
 public:
  SearchLine() = default;
  /// `numbers` are found as texts and as numbers.
  SearchLine(const QStringList& texts, const QStringList& numbers);

  /// Returns whether all the words are found. Returns true if there are none.
  [[nodiscard]] bool Matches(const SearchWords& words) const;

 private:
  QString m_text;     ///< Folded, with a line feed between two texts.
  QString m_numbers;  ///< Digits, with a line feed between two numbers.
};

}  // namespace home
