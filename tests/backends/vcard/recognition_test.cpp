// Which contact is which over the readings of an address book: the rule of docs/contacts.md.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "backends/text/utf.h"
#include "backends/vcard/oid_map.h"
#include "tests/machine/memory_registry.h"
#include "tests/support/registry_access.h"
#include "tests/support/results.h"

namespace vcard {
namespace {

using Oids = std::vector<std::int32_t>;

/// "Lee Ann" is the first name Lee and the last name Ann.
ContactData RecognizedCard(std::string uid, std::u16string name, std::u16string mobile) {
  ContactData contact;
  contact.uid = std::move(uid);
  contact.firstName = std::move(name);
  contact.numbers[2] = std::move(mobile);
  return contact;
}
ContactData RecognizedCard(std::u16string name, std::u16string mobile) {
  return RecognizedCard("", std::move(name), std::move(mobile));
}

class Recognition : public testing::Test {
 protected:
  /// The numbers of the cards of a book, in a new start of the program.
  Oids Read(const std::vector<ContactData>& cards, const std::u16string& name = u"book") {
    return Read(Book{name, cards, true});
  }
  Oids Read(const Book& book) {
    OidMap map(m_registry);
    EXPECT_TRUE(map.Load());
    return map.Assign(std::span(&book, 1), OidMap::Keeping::kStored).value().at(0);
  }

  machine::MemoryRegistry m_registry;
};

// Cards without a UID.

TEST_F(Recognition, ACardWithoutAUidStaysTheSameWithAnotherNumber) {
  const Oids before = Read({RecognizedCard(u"Ann", u"1"), RecognizedCard(u"Bob", u"2")});
  EXPECT_EQ(Read({RecognizedCard(u"Ann", u"3"), RecognizedCard(u"Bob", u"2")}), before);
}

TEST_F(Recognition, ACardWithoutAUidStaysTheSameWithAnAddedNumberAndACompany) {
  const Oids before = Read({RecognizedCard(u"Ann", u"1")});
  ContactData more = RecognizedCard(u"Ann", u"1");
  more.numbers[7] = u"2";
  more.companyName = u"Acme";
  EXPECT_EQ(Read({more}), before);
  EXPECT_EQ(Read({RecognizedCard(u"Ann", u"1")}), before);
}

TEST_F(Recognition, ACardThatGetsAUidLaterStaysTheSame) {
  const Oids before = Read({RecognizedCard(u"Ann", u"1"), RecognizedCard(u"Bob", u"2")});
  EXPECT_EQ(Read({RecognizedCard("a", u"Ann", u"1"), RecognizedCard("b", u"Bob", u"9")}), before);
  EXPECT_EQ(Read({RecognizedCard("a", u"Ann Lee", u"7"), RecognizedCard("b", u"Bob", u"2")}),
            before);
}

TEST_F(Recognition, ACardThatLosesItsUidStaysTheSame) {
  const Oids before = Read({RecognizedCard("a", u"Ann", u"1")});
  EXPECT_EQ(Read({RecognizedCard(u"Ann", u"2")}), before);
  EXPECT_EQ(Read({RecognizedCard(u"Ann", u"3")}), before);
  EXPECT_EQ(Read({RecognizedCard("a", u"Ann", u"1")}), before);
}

TEST_F(Recognition, AnotherNameWithoutAUidIsAnotherContact) {
  const Oids before = Read({RecognizedCard(u"Ann", u"1")});
  EXPECT_NE(Read({RecognizedCard(u"Anna", u"1")}), before);
}

TEST_F(Recognition, APlaceInTheFileMeansNothing) {
  const Oids before = Read({RecognizedCard(u"Ann", u"1"), RecognizedCard(u"Bob", u"2"),
                            RecognizedCard("c", u"Zoe", u"3")});
  EXPECT_EQ(Read({RecognizedCard("c", u"Zoe", u"3"), RecognizedCard(u"New", u"4"),
                  RecognizedCard(u"Ann", u"1")})[2],
            before[0]);
  EXPECT_EQ(Read({RecognizedCard(u"Bob", u"2"), RecognizedCard(u"Ann", u"1")}),
            (Oids{before[1], before[0]}));
}

TEST_F(Recognition, ContentNeverLooksLikeAUid) {
  EXPECT_NE(Read({RecognizedCard("\nLee", u"", u"")}), Read({RecognizedCard("", u"Lee", u"")}));
}

TEST_F(Recognition, WithoutUidsTheSameUniqueNameIsTheSameContactAlsoAfterItWasDeleted) {
  const Oids before = Read({RecognizedCard(u"Ann", u"1"), RecognizedCard(u"Bob", u"2")});
  static_cast<void>(Read({RecognizedCard(u"Bob", u"2")}));
  EXPECT_EQ(Read({RecognizedCard(u"Ann", u"5"), RecognizedCard(u"Bob", u"2")}), before);
}

// Names that are not unique.

TEST_F(Recognition, ANameThatBecomesAmbiguousStaysWithTheCardThatIsAsItWas) {
  const Oids before = Read({RecognizedCard(u"Ann", u"1")});
  const Oids after = Read({RecognizedCard(u"Ann", u"2"), RecognizedCard(u"Ann", u"1")});
  EXPECT_EQ(after[1], before[0]);
  EXPECT_NE(after[0], before[0]);
  EXPECT_EQ(Read({RecognizedCard(u"Ann", u"1"), RecognizedCard(u"Ann", u"2")}),
            (Oids{after[1], after[0]}));
}

TEST_F(Recognition, OfTwoOfANameNobodyGetsTheNumberOfOneThatChanged) {
  const Oids before = Read({RecognizedCard(u"Ann", u"1"), RecognizedCard(u"Ann", u"2")});
  const Oids after = Read({RecognizedCard(u"Ann", u"3"), RecognizedCard(u"Ann", u"2")});
  EXPECT_NE(after[0], before[0]);
  EXPECT_EQ(after[1], before[1]);
}

TEST_F(Recognition, ANameThatIsUniqueAgainBelongsToTheOneThatStayed) {
  const Oids before = Read({RecognizedCard(u"Ann", u"1"), RecognizedCard(u"Ann", u"2")});
  EXPECT_EQ(Read({RecognizedCard(u"Ann", u"2")}), Oids{before[1]});
  EXPECT_EQ(Read({RecognizedCard(u"Ann", u"3")}), Oids{before[1]});
}

TEST_F(Recognition, OneLeftOfTwoOfANameThatAlsoChangedIsNeither) {
  const Oids before = Read({RecognizedCard(u"Ann", u"1"), RecognizedCard(u"Ann", u"2")});
  const Oids after = Read({RecognizedCard(u"Ann", u"3")});
  EXPECT_THAT(before, testing::Not(testing::Contains(after[0])));
}

TEST_F(Recognition, TwoOfANameThatBothGetAUidStayThemselves) {
  const Oids before = Read({RecognizedCard(u"Ann", u"1"), RecognizedCard(u"Ann", u"2")});
  EXPECT_EQ(Read({RecognizedCard("y", u"Ann", u"2"), RecognizedCard("x", u"Ann", u"1")}),
            (Oids{before[1], before[0]}));
  EXPECT_EQ(Read({RecognizedCard("x", u"Ann", u"8"), RecognizedCard("y", u"Ann", u"9")}), before);
}

TEST_F(Recognition, EqualCardsHaveEachTheirOwnNumber) {
  const Oids before = Read(
      {RecognizedCard(u"Ann", u"1"), RecognizedCard(u"Ann", u"1"), RecognizedCard(u"Ann", u"1")});
  EXPECT_EQ(std::set(before.begin(), before.end()).size(), 3U);
  EXPECT_EQ(Read({RecognizedCard(u"Ann", u"1"), RecognizedCard(u"Ann", u"1"),
                  RecognizedCard(u"Ann", u"1")}),
            before);
}

// Cards with a UID.

TEST_F(Recognition, AContactWithAUidStaysTheSameWhateverElseChanges) {
  const Oids before = Read({RecognizedCard("a", u"Ann", u"1")});
  EXPECT_EQ(Read({RecognizedCard("a", u"Berta", u"2")}), before);
}

TEST_F(Recognition, TheNumberOfSomebodyDeletedIsNotGivenToAnotherUid) {
  const Oids before = Read({RecognizedCard("a", u"Ann", u"1"), RecognizedCard("b", u"Bob", u"2")});
  EXPECT_NE(Read({RecognizedCard("c", u"Ann", u"1"), RecognizedCard("b", u"Bob", u"2")})[0],
            before[0]);
  static_cast<void>(Read({RecognizedCard("b", u"Bob", u"2")}));
  EXPECT_NE(Read({RecognizedCard("d", u"Ann", u"1"), RecognizedCard("b", u"Bob", u"2")})[0],
            before[0]);
}

TEST_F(Recognition, WhoOnceHadAUidIsNotGivenToAnotherOneThoughItWasLost) {
  const Oids before = Read({RecognizedCard("a", u"Ann", u"1")});
  ASSERT_EQ(Read({RecognizedCard(u"Ann", u"1")}), before);
  EXPECT_NE(Read({RecognizedCard("b", u"Ann", u"1")}), before);
}

TEST_F(Recognition, SomebodyNewOfAnOldNameIsNotTheOneWhoWasRenamed) {
  const Oids before = Read({RecognizedCard("a", u"Ann", u"1"), RecognizedCard(u"Zoe", u"2")});
  const Oids after = Read({RecognizedCard(u"Ann", u"1"), RecognizedCard("a", u"Berta", u"1"),
                           RecognizedCard(u"Zoe", u"2")});
  EXPECT_EQ(after[1], before[0]);
  EXPECT_NE(after[0], before[0]);
  EXPECT_EQ(Read({RecognizedCard(u"Ann", u"4"), RecognizedCard("a", u"Carla", u"1"),
                  RecognizedCard(u"Zoe", u"2")}),
            after);
}

TEST_F(Recognition, SomebodyNewOfAnotherUidIsNotTheOneWithoutAUidWhoIsStillThere) {
  const Oids before = Read({RecognizedCard(u"Ann", u"1")});
  const Oids after = Read({RecognizedCard("b", u"Ann", u"2"), RecognizedCard(u"Ann", u"1")});
  EXPECT_EQ(after[1], before[0]);
  EXPECT_NE(after[0], before[0]);
}

// UIDs that occur twice.

TEST_F(Recognition, CardsOfOneUidKeepTheirNumbersWhenTheyChangePlaces) {
  const Oids before = Read({RecognizedCard("a", u"Ann", u"1"), RecognizedCard("a", u"Bob", u"2")});
  EXPECT_NE(before[0], before[1]);
  EXPECT_EQ(Read({RecognizedCard("a", u"Bob", u"2"), RecognizedCard("a", u"Ann", u"1")}),
            (Oids{before[1], before[0]}));
  EXPECT_EQ(Read({RecognizedCard("a", u"Bob", u"7"), RecognizedCard("a", u"Ann", u"8")}),
            (Oids{before[1], before[0]}));
}

TEST_F(Recognition, AUidThatComesToOccurTwiceStaysWithItsName) {
  const Oids before = Read({RecognizedCard("a", u"Ann", u"1")});
  const Oids after = Read({RecognizedCard("a", u"Bob", u"2"), RecognizedCard("a", u"Ann", u"3")});
  EXPECT_EQ(after[1], before[0]);
  EXPECT_NE(after[0], before[0]);
}

TEST_F(Recognition, WhoIsLeftOfAUidDoesNotTakeOverTheNumberOfTheOther) {
  const Oids before = Read({RecognizedCard("a", u"Ann", u"1"), RecognizedCard("a", u"Bob", u"2")});
  EXPECT_EQ(Read({RecognizedCard("a", u"Bob", u"2")}), Oids{before[1]});
  EXPECT_EQ(Read({RecognizedCard("a", u"Robert", u"2")}), Oids{before[1]});
}

TEST_F(Recognition, CardsOfOneUidAndOneNameAreKeptApartByTheirContent) {
  const Oids before = Read({RecognizedCard("a", u"Ann", u"1"), RecognizedCard("a", u"Ann", u"2")});
  EXPECT_EQ(Read({RecognizedCard("a", u"Ann", u"2"), RecognizedCard("a", u"Ann", u"1")}),
            (Oids{before[1], before[0]}));
  EXPECT_EQ(Read({RecognizedCard("a", u"Ann", u"2")}), Oids{before[1]});
  EXPECT_EQ(Read({RecognizedCard("a", u"Ann", u"3")}), Oids{before[1]});
}

// Several books, and books that are not whole.

TEST_F(Recognition, ContactsOfAnotherBookAreOtherContacts) {
  const Oids book = Read({RecognizedCard("a", u"Ann", u"1"), RecognizedCard(u"Bob", u"2")});
  const Oids other =
      Read({RecognizedCard("a", u"Ann", u"1"), RecognizedCard(u"Bob", u"2")}, u"other");
  EXPECT_NE(other[0], book[0]);
  EXPECT_NE(other[1], book[1]);
  EXPECT_EQ(Read({RecognizedCard("a", u"Ann", u"1"), RecognizedCard(u"Bob", u"2")}), book);
}

TEST_F(Recognition, TheNameOfACardThatIsCutOffIsNotUnique) {
  const Oids before = Read({RecognizedCard(u"Ann", u"1")});
  EXPECT_NE(
      Read(Book{u"book", {RecognizedCard(u"Ann", u"2")}, false, {RecognizedCard(u"Ann", u"")}}),
      before);
  EXPECT_EQ(Read({RecognizedCard(u"Ann", u"1")}), before);
}

TEST_F(Recognition, ABookThatIsNotWholeMakesNobodyOneOfFormerTimes) {
  const Oids before = Read({RecognizedCard(u"Ann", u"1"), RecognizedCard(u"Ann", u"2")});
  EXPECT_EQ(Read(Book{u"book", {RecognizedCard(u"Ann", u"2")}, false}), Oids{before[1]});
  EXPECT_NE(Read({RecognizedCard(u"Ann", u"3")}), Oids{before[1]}) << "the other one may be meant";
}

// The numbers that registries of former versions hold: entries of 20 bytes.

class FormerRecognition : public Recognition {
 protected:
  /// An entry as it was written for a contact: the digest of "uid:" and the UID, or of "content:",
  /// the UID, and each part after a line feed.
  static void Add(std::vector<std::byte>& entries, const std::string& identifier,
                  std::uint8_t oid) {
    const Digest digest = ComputeDigest(identifier);
    entries.insert(entries.end(), digest.begin(), digest.end());
    entries.insert(entries.end(), {std::byte{oid}, std::byte{0}, std::byte{0}, std::byte{0}});
  }

  void Put(const std::vector<std::byte>& entries) {
    constexpr std::u16string_view kBook = u"Software\\Zedra\\Voxtrel Contacts\\1";
    ASSERT_EQ(support::ErrorOf(support::PutText(m_registry, kBook, u"source", u"book")),
              std::nullopt);
    ASSERT_EQ(support::ErrorOf(
                  support::Put(m_registry, kBook, u"0", platform::RegistryType::kBinary, entries)),
              std::nullopt);
  }

  void SetUp() override {
    std::vector<std::byte> entries;
    Add(entries, "uid:a", 11);
    Add(entries, "content:\n\nBob\n\n\n\n\n2\n\n\n\n\n\n\n", 12);
    Add(entries, "uid:twice", 13);
    Add(entries, "content:twice\n\nZoe\n\n\n\n\n4\n\n\n\n\n\n\n", 14);
    Add(entries, "content:\n\nEve\n\n\n\n\n5\n\n\n\n\n\n\n", 15);
    Add(entries, "content:\n\nEve\n\n\n\n\n5\n\n\n\n\n\n\n\n2", 16);
    Put(entries);
  }

  const std::vector<ContactData> m_cards = {
      RecognizedCard("a", u"Ann", u"1"),     RecognizedCard(u"Bob", u"2"),
      RecognizedCard("twice", u"Tom", u"3"), RecognizedCard("twice", u"Zoe", u"4"),
      RecognizedCard(u"Eve", u"5"),          RecognizedCard(u"Eve", u"5")};
  const Oids m_oids = {11, 12, 13, 14, 15, 16};
};

TEST_F(FormerRecognition, EveryContactKeepsItsNumber) {
  EXPECT_EQ(Read(m_cards), m_oids);
  EXPECT_EQ(Read(m_cards), m_oids);
}

TEST_F(FormerRecognition, AContactThatWasMetOnceMayThenChange) {
  ASSERT_EQ(Read(m_cards), m_oids);
  EXPECT_EQ(Read({RecognizedCard("b", u"Bob", u"9"), RecognizedCard("twice", u"Zoe", u"9"),
                  RecognizedCard("twice", u"Tom", u"8")}),
            (Oids{12, 14, 13}));
}

TEST_F(FormerRecognition, CardsOfOneUidThatChangedPlacesMeanwhileKeepTheirNumbers) {
  EXPECT_EQ(Read({RecognizedCard("twice", u"Zoe", u"4"), RecognizedCard("twice", u"Tom", u"3")}),
            (Oids{14, 13}));
}

TEST_F(FormerRecognition, ACardThatGotAUidMeanwhileKeepsItsNumber) {
  EXPECT_EQ(Read({RecognizedCard("new", u"Bob", u"2")}), Oids{12});
}

TEST_F(FormerRecognition, WhoWasAwayAtTheFirstReadingIsStillFound) {
  static_cast<void>(Read({RecognizedCard("a", u"Ann", u"1")}));
  EXPECT_EQ(Read({RecognizedCard("a", u"Ann", u"1"), RecognizedCard(u"Bob", u"2")}),
            (Oids{11, 12}));
}

TEST_F(FormerRecognition, ACardWhoseNumbersTookOtherPlacesIsFoundByTheFormerOnes) {
  ContactData bob = RecognizedCard(u"Bob", u"2");
  bob.numbers[7] = u"22";
  bob.formerContent = ContentOf(RecognizedCard(u"Bob", u"2"));
  EXPECT_EQ(Read({bob}), Oids{12});
}

TEST_F(FormerRecognition, FormerEntriesAreLeftAsTheyAre) {
  const auto before = support::BytesOf(m_registry, u"Software\\Zedra\\Voxtrel Contacts\\1", u"0");
  static_cast<void>(Read(m_cards));
  EXPECT_EQ(support::BytesOf(m_registry, u"Software\\Zedra\\Voxtrel Contacts\\1", u"0"), before);
}

TEST_F(FormerRecognition, ANumberOfAFormerEntryBelongsToItsBook) {
  OidMap map(m_registry);
  ASSERT_TRUE(map.Load());
  EXPECT_TRUE(map.Belongs(15, u"book"));
}

}  // namespace
}  // namespace vcard
