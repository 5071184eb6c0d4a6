#include "backends/vcard/vcard_splitter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/backends/vcard/read_cards.h"

namespace vcard {
namespace {

std::string NamedCard(const std::string& name) {
  return WriteCard("N:" + name + ";;;;\nTEL;TYPE=CELL:1");
}

std::string NamesIn(const Cards& cards) {
  std::string names;
  for (const ContactData& contact : cards.contacts) {
    names += text::ToUtf8(contact.lastName) + ".";
  }
  return names;
}

TEST(VcardSplitter, HandsOnEachCardInOrder) {
  const Cards cards = ReadCards(NamedCard("A") + NamedCard("B") + "\r\n\r\n" + NamedCard("C"));
  EXPECT_EQ(NamesIn(cards), "A.B.C.");
  EXPECT_FALSE(cards.isDamaged);
}

TEST(VcardSplitter, ReadsTheSameHoweverTheStreamIsCut) {
  const std::string stream =
      WriteCard(
          "N;ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8:M=C3=\n=BCller;;;;\nNOTE:x\n y\nTEL;CELL:1") +
      NamedCard("B");
  for (const std::size_t size : {1U, 2U, 3U, 7U, 64U}) {
    const Cards cards = ReadCards(stream, size);
    EXPECT_EQ(NamesIn(cards), "Müller.B.") << size;
    EXPECT_FALSE(cards.isDamaged);
  }
}

TEST(VcardSplitter, TakesEveryEndOfLine) {
  for (const std::string end : {"\n", "\r", "\r\n"}) {
    const std::string stream =
        "BEGIN:VCARD" + end + "N:A" + end + " B;;;;" + end + "END:VCARD" + end;
    const Cards cards = ReadCards(stream + stream);
    EXPECT_EQ(NamesIn(cards), "AB.AB.");
    EXPECT_FALSE(cards.isDamaged);
  }
}

TEST(VcardSplitter, EndsOfLinesMayChangeWithinTheStream) {
  for (const std::size_t size : {1U, 2U, 100U}) {
    const Cards cards =
        ReadCards("BEGIN:VCARD\r\nN:A\nTEL:1\rEND:VCARD\r\n" + NamedCard("B"), size);
    EXPECT_EQ(NamesIn(cards), "A.B.") << size;
    EXPECT_FALSE(cards.isDamaged);
  }
}

TEST(VcardSplitter, NeedsNoEndOfTheLastLine) {
  const Cards cards = ReadCards("BEGIN:VCARD\nN:A;;;;\nEND:VCARD");
  EXPECT_EQ(NamesIn(cards), "A.");
  EXPECT_FALSE(cards.isDamaged);
}

TEST(VcardSplitter, PassesOverAByteOrderMark) {
  const Cards cards = ReadCards("\xEF\xBB\xBF" + NamedCard("A"));
  EXPECT_EQ(NamesIn(cards), "A.");
  EXPECT_FALSE(cards.isDamaged);
}

TEST(VcardSplitter, PassesOverTheByteOrderMarksOfFilesThatWereJoined) {
  const std::string file = "\xEF\xBB\xBF" + NamedCard("A");
  const Cards cards = ReadCards(file + file + "\xEF\xBB\xBF");
  EXPECT_EQ(NamesIn(cards), "A.A.");
  EXPECT_FALSE(cards.isDamaged);
}

TEST(VcardSplitter, AMarkAfterATornFileHidesNoDamage) {
  const std::string torn = "BEGIN:VCARD\nTEL:1\n";
  const Cards plain = ReadCards(torn + NamedCard("A"));
  const Cards marked = ReadCards(torn + "\xEF\xBB\xBF" + NamedCard("A"));
  EXPECT_TRUE(plain.isDamaged);
  EXPECT_TRUE(marked.isDamaged);
  EXPECT_EQ(NamesIn(marked), NamesIn(plain));
}

TEST(VcardSplitter, PassesOverAPictureHoweverTheStreamIsCut) {
  for (const std::string end : {"\n", "\r\n"}) {
    std::string stream = "BEGIN:VCARD" + end + "N:A;;;;" + end + "PHOTO;ENCODING=b:";
    for (int i = 0; i < 300; ++i) {
      // A line that goes on begins with a blank, whatever else it looks like.
      stream += std::string(70, 'x') + end + (i % 2 == 0 ? " END:VCARD" : "\tN:B;;;;=");
    }
    stream += end + "ORG;x" + end + "END:VCARD" + end + NamedCard("C");
    for (const std::size_t size : {1U, 71U, 72U, 100'000U}) {
      const Cards cards = ReadCards(stream, size);
      EXPECT_EQ(NamesIn(cards), "A.C.");
      EXPECT_THAT(cards.damage, testing::StartsWith("304: ")) << size;
    }
  }
}

TEST(VcardSplitter, APictureThatSoftBreaksWriteEndsWithItsLastLine) {
  for (const std::size_t size : {1U, 30U, 1000U}) {
    const Cards cards = ReadCards(
        "BEGIN:VCARD\nN:A;;;;\nPHOTO;ENCODING=QUOTED-PRINTABLE:x=\nN:B;;;;=\nEND:VCARD\n"
        "END:VCARD\n",
        size);
    EXPECT_EQ(NamesIn(cards), "A.");
    EXPECT_FALSE(cards.isDamaged);
  }
}

TEST(VcardSplitter, TakesKeywordsInAnyCase) {
  const Cards cards = ReadCards("begin:vcard\nn:A;;;;\nend : vcard \n");
  EXPECT_EQ(NamesIn(cards), "A.");
}

TEST(VcardSplitter, AnEmptyStreamHoldsNothingAndIsWhole) {
  const Cards cards = ReadCards("");
  EXPECT_EQ(NamesIn(cards), "");
  EXPECT_FALSE(cards.isDamaged);
}

// Damage: what can be read is read, and what is missing is reported.

void ExpectDamaged(const std::string& stream, const std::string& names) {
  const Cards cards = ReadCards(stream);
  EXPECT_EQ(NamesIn(cards), names);
  EXPECT_TRUE(cards.isDamaged);
}

TEST(VcardSplitter, ACardWithoutAnEndIsDamage) {
  ExpectDamaged("BEGIN:VCARD\nN:A;;;;\n" + NamedCard("B"), "B.");
  ExpectDamaged(NamedCard("B") + "BEGIN:VCARD\nN:A;;;;\nTEL;CELL:1\n", "B.");
}

TEST(VcardSplitter, ACardWithoutABeginIsDamage) {
  ExpectDamaged("N:A;;;;\nTEL:1\nEND:VCARD\n" + NamedCard("B"), "B.");
}

TEST(VcardSplitter, AStreamOfOtherBytesIsDamage) {
  std::string bytes;
  for (unsigned i = 0; i < 100'000; ++i) {
    bytes += static_cast<char>(i * i * 31 % 251);
  }
  ExpectDamaged(bytes, "");
}

TEST(VcardSplitter, ALineOfMegabytesIsPassedOver) {
  const std::string huge(20'000'000, 'x');
  ExpectDamaged(WriteCard("N:A;;;;\nUID:" + huge + "\nTEL;CELL:1") + NamedCard("B"), "A.B.");
}

TEST(VcardSplitter, AHugeLineThatNobodyReadsIsNoDamage) {
  const Cards cards = ReadCards(WriteCard("N:A;;;;\nPHOTO:" + std::string(5'000'000, 'x')));
  EXPECT_EQ(NamesIn(cards), "A.");
  EXPECT_FALSE(cards.isDamaged);
}

TEST(VcardSplitter, AZeroByteInALineIsDamage) {
  ExpectDamaged(WriteCard(std::string_view("N:A;;;;\nUID:a\0b\nTEL;CELL:1", 27)), "A.");
}

TEST(VcardSplitter, MoreSeparatorsThanAnyNameHasAreDamage) {
  ExpectDamaged(WriteCard("N:A;;;;\nORG:" + std::string(5000, ';')), "A.");
}

TEST(VcardSplitter, MoreLinesThanAnyContactHasAreDamage) {
  std::string lines = "N:A;;;;";
  for (int i = 0; i < 100'000; ++i) {
    lines += "\nTEL;CELL:1";
  }
  ExpectDamaged(WriteCard(lines) + NamedCard("B"), "A.B.");
}

// Each damage is named with its line.

TEST(VcardSplitter, ACardWithoutAnEndIsNamedByTheLineOnWhichItBegins) {
  const std::string torn = "BEGIN:VCARD\r\nN:A;;;;\r\n";
  const Cards within = ReadCards("\r\n\r\n" + torn + NamedCard("B"));
  EXPECT_EQ(within.damage, "3: the card that begins here has no end and is passed over\n");
  const Cards last = ReadCards(NamedCard("B") + torn);
  EXPECT_EQ(last.damage, "6: the card that begins here has no end and is passed over\n");
  ASSERT_EQ(last.torn.size(), 1U);
  EXPECT_EQ(last.torn[0].lastName, u"A");
}

TEST(VcardSplitter, LinesAreCountedAsEditorsDo) {
  for (const std::string end : {"\n", "\r", "\r\n"}) {
    const std::string stream = "BEGIN:VCARD" + end + "N:A" + end + " B" + end + end +
                               "NOTE:=" + end + "TEL" + end + "END:VCARD" + end + "stray" + end +
                               "more" + end;
    const Cards cards = ReadCards(stream);
    EXPECT_EQ(cards.damage, "8: the line belongs to no card\n");
  }
}

TEST(VcardSplitter, EachLineThatIsLeftOutIsNamed) {
  EXPECT_EQ(ReadCards(WriteCard("N:A;;;;\nTEL:" + std::string(9000, '1'))).damage,
            "4: the line is longer than 8 KiB\n");
  EXPECT_EQ(ReadCards(WriteCard(std::string_view("N:A;;;;\nTEL:1\0", 14))).damage,
            "4: the line holds a zero byte\n");
  EXPECT_EQ(ReadCards(WriteCard("ORG:" + std::string(65, ';'))).damage,
            "3: the line has more than 64 commas and semicolons\n");
  std::string lines = "N:A;;;;";
  for (int i = 0; i < 200; ++i) {
    lines += "\nTEL:1";
  }
  EXPECT_EQ(ReadCards(WriteCard(lines)).damage,
            "203: the card has more than 200 lines of names and numbers\n");
}

// UTF-16, as some programs export it.

std::string ToUtf16(std::u16string_view text, bool isBigEndian) {
  std::string bytes;
  for (const char16_t unit : text) {
    const std::string pair = {static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)};
    bytes += isBigEndian ? std::string(pair.rbegin(), pair.rend()) : pair;
  }
  return bytes;
}

TEST(VcardSplitter, ReadsUtf16WithAndWithoutAMark) {
  const std::u16string text = u"BEGIN:VCARD\r\nN:Müller 😀;李;;;\r\nEND:VCARD\r\n";
  for (const bool isBigEndian : {false, true}) {
    for (const std::u16string mark : {u"", u"\uFEFF"}) {
      for (const std::size_t size : {1U, 2U, 3U, 64U, 4096U}) {
        const Cards cards = ReadCards(ToUtf16(mark + text + text, isBigEndian), size);
        EXPECT_EQ(NamesIn(cards), "Müller 😀.Müller 😀.") << isBigEndian << size;
        EXPECT_FALSE(cards.isDamaged) << cards.damage;
      }
    }
  }
}

TEST(VcardSplitter, Utf16ThatIsCutOffIsDamage) {
  const std::string whole = ToUtf16(u"BEGIN:VCARD\nN:A;;;;\nEND:VCARD\n", false);
  const std::string again = ToUtf16(u"BEGIN:VCARD\nN:B", false);
  const Cards cards = ReadCards(whole + again.substr(0, again.size() - 1));
  EXPECT_EQ(NamesIn(cards), "A.");
  EXPECT_EQ(cards.damage, "4: the card that begins here has no end and is passed over\n");
  EXPECT_TRUE(ReadCards(whole + "\x3D").isDamaged) << "half a character";
}

TEST(VcardSplitter, StrayQuotesAndParenthesesLoseNothing) {
  const Cards cards =
      ReadCards(WriteCard("N:A;;;;\nTEL;TYPE=\"CELL:1\nTEL;X-CUSTOM(Car:2\nTEL;(;=;,:3"));
  ASSERT_EQ(cards.contacts.size(), 1U);
  EXPECT_EQ(NumbersOf(cards.contacts[0]), "Car=2; Mobile=1; Home=3");
}

TEST(VcardSplitter, ALineThatANameMakesNeedlessIsDamagedAsAnyOther) {
  EXPECT_EQ(ReadCards(WriteCard("N:Lee;Ann\nFN;X=1\nTEL:1")).damage,
            ReadCards(WriteCard("TEL:1\nFN;X=1\nN:Lee;Ann")).damage);
  EXPECT_TRUE(ReadCards(WriteCard("N:Lee;Ann\nEMAIL;X=1\nTEL:1")).isDamaged);
  EXPECT_FALSE(ReadCards(WriteCard("N:Lee;Ann\nEMAIL:x\nTEL:1")).isDamaged);
}

}  // namespace
}  // namespace vcard
