#include "host/home/search.h"

#include <gtest/gtest.h>

namespace {

using home::SearchLine;
using home::SearchWords;

bool Finds(const QString& typed, const QStringList& texts, const QStringList& numbers = {}) {
  return SearchLine(texts, numbers).Matches(SearchWords(typed));
}

TEST(Search, FindsWordsInAnyOrderOverAllTextsOfALine) {
  const QStringList anna{QStringLiteral("Anna Berg"), QStringLiteral("Mobile"),
                         QStringLiteral("Harbour Works")};
  EXPECT_TRUE(Finds(QStringLiteral("berg anna"), anna));
  EXPECT_TRUE(Finds(QStringLiteral("  harb  mob an "), anna));
  EXPECT_FALSE(Finds(QStringLiteral("anna stone"), anna));
}

TEST(Search, FindsEverythingIfNothingIsTyped) {
  EXPECT_TRUE(SearchWords(QStringLiteral(" \t")).IsEmpty());
  EXPECT_TRUE(Finds(QStringLiteral(" "), {QStringLiteral("Anna")}));
}

TEST(Search, TakesNoWordFromTheEndOfOneTextAndTheBeginningOfTheNext) {
  EXPECT_FALSE(Finds(QStringLiteral("nabe"), {QStringLiteral("Anna"), QStringLiteral("Berg")}));
  EXPECT_FALSE(Finds(QStringLiteral("12"), {}, {QStringLiteral("1"), QStringLiteral("2")}));
}

TEST(Search, TakesLettersWithoutCaseAndAccentsForTheSame) {
  EXPECT_TRUE(Finds(QStringLiteral("MULLER"), {QStringLiteral("Jürgen Müller")}));
  EXPECT_TRUE(Finds(QStringLiteral("мария"), {QStringLiteral("МАРИЯ Петрова")}));
  EXPECT_TRUE(Finds(QStringLiteral("strasse"), {QStringLiteral("Straße")}));
  EXPECT_TRUE(Finds(QStringLiteral("δημος"), {QStringLiteral("ΔΗΜΟΣ")}));
}

TEST(Search, FindsANumberWithOrWithoutTheSignsBetweenItsDigits) {
  const QStringList number{QStringLiteral("+972 50-555 (0144)")};
  EXPECT_TRUE(Finds(QStringLiteral("+972505550144"), {}, number));
  EXPECT_TRUE(Finds(QStringLiteral("50 555 0144"), {}, number));
  EXPECT_TRUE(Finds(QStringLiteral("50.555.01"), {}, number));
  EXPECT_TRUE(Finds(QStringLiteral("٥٠٥٥٥"), {}, number));
  EXPECT_FALSE(Finds(QStringLiteral("50556"), {}, number));
}

TEST(Search, FindsDigitsThatAreWrittenInAnotherScript) {
  EXPECT_TRUE(Finds(QStringLiteral("0144"), {}, {QStringLiteral("٠١٤٤")}));
}

TEST(Search, FindsNumbersWhoseTextHasALetterAsTextsOnly) {
  EXPECT_TRUE(Finds(QStringLiteral("ext"), {}, {QStringLiteral("555 ext. 7")}));
  EXPECT_TRUE(Finds(QStringLiteral("555"), {}, {QStringLiteral("555 ext. 7")}));
}

}  // namespace
