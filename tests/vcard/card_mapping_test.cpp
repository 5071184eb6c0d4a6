// Names and identifiers of contacts, in the shapes in which each kind of exporter writes them.

#include "platform/vcard/card_mapping.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/vcard/read_cards.h"

namespace vcard {
namespace {

ContactData Only(std::string_view lines, std::string_view version = "3.0") {
  Cards cards = ReadCards(WriteCard(lines, version));
  EXPECT_FALSE(cards.isDamaged);
  EXPECT_EQ(cards.contacts.size(), 1U);
  return cards.contacts.empty() ? ContactData() : cards.contacts[0];
}

TEST(CardMapping, ReadsTheThreePartsOfTheNameAndTheCompany) {
  EXPECT_EQ(NamesOf(Only("N:Lee;Ann;May;Dr.;PhD\nFN:Dr. Ann May Lee\nORG:Acme Inc.;Sales")),
            "Lee|Ann|May|Acme Inc.");
}

TEST(CardMapping, ReadsANameWithoutAllOfItsParts) {
  EXPECT_EQ(NamesOf(Only("N:Lee")), "Lee|||");
  EXPECT_EQ(NamesOf(Only("N:;Ann;;;")), "|Ann||");
}

TEST(CardMapping, TakesTheFormattedNameWhereThereIsNoOther) {
  EXPECT_EQ(NamesOf(Only("FN:Ann Lee", "4.0")), "|Ann Lee||");
  EXPECT_EQ(NamesOf(Only("N:;;;;\nFN:Ann Lee")), "|Ann Lee||");
  EXPECT_EQ(NamesOf(Only("FN:Ann Lee\nFN;LANGUAGE=de:Anna Lee", "4.0")), "|Ann Lee||");
}

TEST(CardMapping, TakesNoCompanyForAName) {
  EXPECT_EQ(NamesOf(Only("N:;;;;\nFN:Acme\nORG:Acme;\nX-ABShowAs:COMPANY")), "|||Acme");
}

TEST(CardMapping, ReadsSeveralMiddleNames) {
  EXPECT_EQ(NamesOf(Only("N:Stevenson;John;Philip,Paul;;")), "Stevenson|John|Philip Paul|");
  EXPECT_EQ(NamesOf(Only("N:Stevenson;John;,Paul,;;")), "Stevenson|John|Paul|");
}

TEST(CardMapping, ReadsEscapedText) {
  EXPECT_EQ(NamesOf(Only("N:Lee\\, Jr.;Ann\\;e;;;\nORG:A\\\\B\\nC")), "Lee, Jr.|Ann;e||A\\B C");
}

TEST(CardMapping, KeepsBackslashesThatEscapeNothing) {
  EXPECT_EQ(NamesOf(Only("N:Lee;;;;\nORG:C:\\Path\\", "2.1")), "Lee|||C:\\Path\\");
}

TEST(CardMapping, ReadsQuotedPrintableInItsCharacterSet) {
  EXPECT_EQ(
      NamesOf(Only("N;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:M=C3=BCller;J=C3=B6rg;;;", "2.1")),
      "Müller|Jörg||");
  EXPECT_EQ(
      NamesOf(Only("N;ENCODING=QUOTED-PRINTABLE;CHARSET=ISO-8859-1:M=FCller;J=F6rg;;;", "2.1")),
      "Müller|Jörg||");
  EXPECT_EQ(NamesOf(Only("N;QUOTED-PRINTABLE;CHARSET=windows-1251:=CF=E5=F2=F0=EE=E2;;;;", "2.1")),
            "Петров|||");
  EXPECT_EQ(NamesOf(Only("N;CHARSET=SHIFT_JIS;ENCODING=QUOTED-PRINTABLE:=8E=52=93=63;;;;", "2.1")),
            "山田|||");
}

TEST(CardMapping, JoinsQuotedPrintableOverSeveralLines) {
  EXPECT_EQ(NamesOf(Only("N;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:=E6=9D=8E;=\n=E5=AE=89;;;\n"
                         "ORG;ENCODING=QUOTED-PRINTABLE:Acme=20=\n Works=\n\nTEL;CELL:1",
                         "2.1")),
            "李|安||Acme Works");
}

TEST(CardMapping, AnEqualsSignGoesOnInQuotedPrintableAlone) {
  // Pictures in base64 end with it; a card has both kinds of lines in any order.
  const std::string picture = "PHOTO;ENCODING=BASE64;JPEG:\n /9j/4AAQSkZJRg==\n";
  const std::string name = "N;ENCODING=QUOTED-PRINTABLE:Le=\ne;An=\nn;;;\n";
  for (const std::string& lines : {name + picture + "TEL;CELL:1", picture + name + "TEL;CELL:1",
                                   name + picture + "TEL;CELL:1\n" + picture}) {
    const ContactData contact = Only(lines, "2.1");
    EXPECT_EQ(NamesOf(contact), "Lee|Ann||");
    EXPECT_EQ(NumbersOf(contact), "Mobile=1");
  }
}

TEST(CardMapping, ReadsEightBitTextInItsCharacterSet) {
  EXPECT_EQ(NamesOf(Only("N;CHARSET=ISO-8859-2:\xA3uk;;;;", "2.1")), "Łuk|||");
}

TEST(CardMapping, TakesUnlabelledEightBitTextForThatOfOldWindowsPrograms) {
  EXPECT_EQ(NamesOf(Only("N:M\xFCller;J\xF6rg;;;", "2.1")), "Müller|Jörg||");
  EXPECT_EQ(NamesOf(Only("N;ENCODING=QUOTED-PRINTABLE:M=FCller;;;;", "2.1")), "Müller|||");
}

TEST(CardMapping, DoesNotLoadCharacterSetsThatNobodyWrites) {
  EXPECT_EQ(NamesOf(Only("N;CHARSET=ISO-2022-CN-EXT:Lee;Ann;;;", "2.1")), "Lee|Ann||");
  EXPECT_EQ(NamesOf(Only("N;CHARSET=../../x;ENCODING=QUOTED-PRINTABLE:L=65e;;;;", "2.1")),
            "Lee|||");
}

TEST(CardMapping, PutsNamesOnOneLineWithoutBlanksAtTheEnds) {
  EXPECT_EQ(NamesOf(Only("N: Lee ;Ann\\nMay;;;")), "Lee|Ann May||");
}

TEST(CardMapping, JoinsFoldedLinesAlsoWithinACharacter) {
  EXPECT_EQ(NamesOf(Only("N:M\xC3\n \xBCller;An\n\tn;;;")), "Müller|Ann||");
}

TEST(CardMapping, ReadsTheIdentifier) {
  EXPECT_EQ(Only("UID:a-1\nN:Lee;;;;").uid, "a-1");
  EXPECT_EQ(Only("UID: \nN:Lee;;;;").uid, "");
  EXPECT_EQ(Only("UID:a\nUID:b\nN:Lee;;;;").uid, "a");
  EXPECT_EQ(Only("N:Lee;;;;").uid, "");
}

TEST(CardMapping, AnIdentifierIsTheSameInEveryVersion) {
  EXPECT_EQ(Only("UID:urn:uuid:4fbe8971-0bc3\nFN:Lee", "4.0").uid,
            Only("UID:4fbe8971-0bc3\nN:Lee;;;;").uid);
}

TEST(CardMapping, PassesOverTheCardOfAnAgent) {
  const Cards cards = ReadCards(WriteCard(
      "N:Lee;Ann;;;\nAGENT:\nBEGIN:VCARD\nN:Ray;Bob;;;\nTEL;CELL:9\nEND:VCARD\nTEL;CELL:1", "2.1"));
  EXPECT_FALSE(cards.isDamaged);
  ASSERT_EQ(cards.contacts.size(), 1U);
  EXPECT_EQ(NamesOf(cards.contacts[0]), "Lee|Ann||");
  EXPECT_EQ(NumbersOf(cards.contacts[0]), "Mobile=1");
}

TEST(CardMapping, PassesOverWhatItDoesNotRead) {
  const std::string picture(200'000, 'A');
  EXPECT_EQ(NamesOf(Only("N:Lee;Ann;;;\nPHOTO;ENCODING=b;TYPE=JPEG:" + picture +
                         "\nNOTE;ENCODING=QUOTED-PRINTABLE:TEL:9=\nEND:VCARD=\n\nTEL;CELL:1")),
            "Lee|Ann||");
}

}  // namespace
}  // namespace vcard
