// Names and identifiers of contacts, in the shapes in which each kind of exporter writes them.

#include "backends/vcard/card_reader.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/backends/vcard/read_cards.h"

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

TEST(CardMapping, TakesTheFormattedNameIfThereIsNoOther) {
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

TEST(CardMapping, ReadsSeveralFamilyAndFirstNames) {
  EXPECT_EQ(NamesOf(Only("N:Garc\xC3\xAD"
                         "a,M\xC3\xA1rquez;Gabriel,Jos\xC3\xA9;;;")),
            "García Márquez|Gabriel José||");
  EXPECT_EQ(NamesOf(Only("N;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:Garc=C3=ADa,M=C3=A1rquez;;;;",
                         "2.1")),
            "García Márquez|||");
}

TEST(CardMapping, ACommaWithinANameStays) {
  EXPECT_EQ(NamesOf(Only("N:Lee, Jr.;Ann\\,May;;;")), "Lee, Jr.|Ann,May||");
}

// A contact without a name or a company is shown by what else there is.

TEST(CardMapping, ANamelessCardShowsItsNickname) {
  EXPECT_EQ(NamesOf(Only("N:;;;;\nTEL:1\nEMAIL:a@example.org\nNICKNAME:Annie")), "|Annie||");
}

TEST(CardMapping, ANamelessCardWithoutANicknameShowsItsMail) {
  EXPECT_EQ(NamesOf(Only("TEL:1\nEMAIL;TYPE=HOME:a@example.org\nNICKNAME:")), "|a@example.org||");
}

TEST(CardMapping, ANamelessCardWithoutBothShowsItsNumber) {
  EXPECT_EQ(NamesOf(Only("TEL;TYPE=PAGER:\nTEL;TYPE=HOME:555 1")), "|555 1||");
}

TEST(CardMapping, ACompanyComesBeforeTheNickname) {
  EXPECT_EQ(NamesOf(Only("ORG:Acme\nNICKNAME:Annie")), "|||Acme");
}

TEST(CardMapping, AControlCharacterWithinANumberIsNoBlankThatWouldLetItBeDialled) {
  EXPECT_EQ(NumbersOf(Only("N:Lee\nTEL;CELL:555\\n0101", "2.1")), "Mobile=555\uFFFD0101");
  EXPECT_EQ(NumbersOf(Only("N:Lee\nTEL;CELL:555\x1A", "2.1")), "Mobile=555\uFFFD");
  EXPECT_EQ(NumbersOf(Only("N:Lee\nTEL;CELL:555\t0101", "2.1")), "Mobile=555\uFFFD0101");
  EXPECT_EQ(NumbersOf(Only("N:Lee\nTEL;TYPE=CELL;VALUE=uri:tel:555%0D0101", "4.0")),
            "Mobile=555\uFFFD0101");
  EXPECT_EQ(NumbersOf(Only("N:Lee\nTEL;CELL:\t555 0101 \t", "2.1")), "Mobile=555 0101")
      << "around it they are no part of it";
}

// What a contact was called and numbered before, by which former entries find it.

TEST(CardMapping, KeepsTheFormerContentOfACardThatReadsOtherwiseNow) {
  const ContactData contact = Only("N:Lee;;;;\nTEL;CELL:1\nTEL;CELL:2", "2.1");
  EXPECT_EQ(NumbersOf(contact), "Mobile=1; Home=2");
  EXPECT_EQ(contact.formerContent, "\nLee\n\n\n\n\n\n1\n\n\n\n\n\n\n");
  EXPECT_EQ(Only("N:A,B;;;;").formerContent, "\nA,B\n\n\n\n\n\n\n\n\n\n\n\n\n");
  EXPECT_EQ(Only("NICKNAME:Annie").formerContent, std::string(14, '\n'));
  EXPECT_EQ(Only("N:Lee;;;;\nitem1.TEL:1\nitem1.X-ABLabel:Car Rental").formerContent,
            "\nLee\n\n\n\n1\n\n\n\n\n\n\n\n\n");
}

TEST(CardMapping, KeepsTheFormerContentOfANameWhoseEncodingWasNotRead) {
  const std::string empty(10, '\n');
  EXPECT_EQ(Only("N;ENCODING=B:TGVlO0Fubjs7Ow==").formerContent,
            "\nTGVlO0Fubjs7Ow==\n\n\n" + empty);
  EXPECT_EQ(Only("N;CHARSET=ISO-2022-JP:\x1B$B;3ED\x1B(B;Ann;;;").formerContent,
            "\n$B\n3ED (B\nAnn\n" + empty);
  // A bad byte made a text one of Windows.
  EXPECT_EQ(Only("N;CHARSET=UTF-8:M\xC3\xBCller\xFF;;;;").formerContent,
            "\nM\xC3\x83\xC2\xBCller\xC3\xBF\n\n\n" + empty);
}

TEST(CardMapping, KeepsNoFormerContentOfACardThatReadsAsBefore) {
  EXPECT_EQ(Only("N;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:M=C3=BCller;;;;").formerContent, "");
  EXPECT_EQ(Only("N;CHARSET=ISO-8859-1:M\xFCller;;;;").formerContent, "");
  EXPECT_EQ(Only("N:Lee;Ann;May,Sue;;\nORG:Acme\nTEL;CELL:1\nTEL;HOME:2").formerContent, "");
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

TEST(CardMapping, ReadsBase64) {
  EXPECT_EQ(NamesOf(Only("N;CHARSET=UTF-8;ENCODING=B:TcO8bGxlcjtKw7ZyZzs7Ow==")), "Müller|Jörg||");
  EXPECT_EQ(NamesOf(Only("N;ENCODING=BASE64;CHARSET=ISO-8859-1:TfxsbGVyO0r2\n cmc7Ozs=\n", "2.1")),
            "Müller|Jörg||");
  EXPECT_EQ(NamesOf(Only("FN;BASE64:QW5uIExlZQ==", "2.1")), "|Ann Lee||");
}

TEST(CardMapping, WhatIsNoBase64StandsForItself) {
  EXPECT_EQ(NamesOf(Only("N;ENCODING=B:M\xC3\xBCller;J;;;")), "Müller|J||");
}

TEST(CardMapping, ReadsTheJapaneseOfMails) {
  EXPECT_EQ(NamesOf(Only("N;CHARSET=ISO-2022-JP:\x1B$B;3ED\x1B(B;\x1B$BB@O:\x1B(B;;;", "2.1")),
            "山田|太郎||");
  EXPECT_EQ(NamesOf(Only("N;CHARSET=iso-2022-jp;ENCODING=QUOTED-PRINTABLE:"
                         "=1B$B;3ED=1B(B;=1B$BB@O:=1B(B;;;",
                         "2.1")),
            "山田|太郎||");
}

TEST(CardMapping, OneBadByteSpoilsOneCharacter) {
  EXPECT_EQ(NamesOf(Only("N:M\xC3\xBCller\xFF;J\xC3\xB6rg;;;")), "Müller\uFFFD|Jörg||");
  EXPECT_EQ(NamesOf(Only("N;CHARSET=UTF-8:M\xC3\xBC\x80ller;;;;", "2.1")), "Mü\uFFFDller|||");
  EXPECT_EQ(NamesOf(Only("N;CHARSET=SHIFT_JIS:\x8E\x52\xFF\x93\x63;;;;", "2.1")), "山\uFFFD田|||");
  EXPECT_EQ(NamesOf(Only("N;CHARSET=ISO-2022-JP:\x1B$B;3ED\x1B(B\xFF;;;;", "2.1")),
            "山田\uFFFD|||");
}

TEST(CardMapping, ACharacterSetThatIsNamedWronglyIsFoundOut) {
  EXPECT_EQ(NamesOf(Only("N;CHARSET=UTF-8:M\xFCller;;;;", "2.1")), "Müller|||");
  EXPECT_EQ(NamesOf(Only("N;CHARSET=SHIFT_JIS:M\xC3\xBCllerstra\xC3\x9F"
                         "e \xF0\x9F\x98\x80;;;;",
                         "2.1")),
            "Müllerstraße 😀|||");
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

// A second reading costs as much as the first one, and most cards need none.
TEST(CardReader, ACardIsReadASecondTimeIfTheFormerRulesMakeSomethingElseOfIt) {
  for (const char* lines : {"N:Lee;Ann;Mary;;\nTEL;CELL:1",
                            "N:Lee;Ann;Mary,Jo;;",
                            "N:Lee;Ann;Mary\\,Jo;;",
                            "N:Lee;Ann;Mary, Jo;;",
                            "N:García,Márquez;Ann",
                            "N:;;Mary",
                            "N:;;;\nN:Lee;Ann",
                            "N:Lee;Ann\nN:;;;",
                            "FN:Ann Lee\nORG:Acme",
                            "NICKNAME:Annie",
                            "EMAIL:a@b",
                            "TEL;CELL:1",
                            "ORG:Acme\nFN:Acme\nTEL;CELL:1",
                            "N:Lee\nTEL;CELL:1\nTEL;CELL:2",
                            "N:Lee\nTEL;CELL:1\nEMAIL;TYPE=CELL:x",
                            "N:Lee\nTEL;TYPE=WORK,CELL:1\nTEL;WORK:2",
                            "N:Lee\nTEL;PREF=2:1\nTEL;PREF=1:2",
                            "N:Lee\nTEL;WORK:1\nTEL;WORK;PREF:2",
                            "N:Lee\nTEL:tel:+1;ext=5",
                            "N:Lee\nTEL:tel:+1\\;ext=5",
                            "N:Lee\nTEL;VALUE=uri:tel:+1",
                            "N:Lee\nTEL;X-CUSTOM(Car Rental):1",
                            "N:Lee\nitem1.TEL:1\nitem1.X-ABLabel:Car Rental",
                            "N;ENCODING=QUOTED-PRINTABLE:=4C=65=65",
                            "N;CHARSET=ISO-8859-1:M\xFCller;J\xF6rg",
                            "N;ENCODING=B:TGVl",
                            "N:Lee\nTEL;CELL;ENCODING=QUOTED-PRINTABLE:=31"}) {
    VcardSplitter splitter([lines](const Card& card) {
      const ContactData contact = ToContactData(card);
      EXPECT_EQ(contact.formerContent, FormerContentOf(card, contact)) << lines;
    });
    splitter.Feed(WriteCard(lines));
    splitter.Finish();
  }
}

}  // namespace
}  // namespace vcard
