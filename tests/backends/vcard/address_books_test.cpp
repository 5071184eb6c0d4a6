#include "backends/vcard/address_books.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "tests/backends/vcard/read_cards.h"
#include "tests/machine/memory_file_system.h"
#include "tests/machine/memory_registry.h"
#include "tests/support/file_bytes.h"
#include "tests/support/registry_access.h"
#include "tests/support/results.h"
#include "tests/support/watched_file_system.h"
#include "tests/support/watched_registry.h"

namespace vcard {
namespace {

using platform::BooksError;
using platform::ContactsError;

/// The desktop's address books as a test sets them.
class SetDesktop final : public ContactSource {
 public:
  ReadBooks Read(RemarkList& /*remarks*/) override { return books; }

  void Fail(BooksError::Kind kind) { books = platform::Failure(BooksError{kind, {}}); }

  ReadBooks books = platform::Failure(BooksError{BooksError::Kind::kNoAnswer, {}});
};

ContactData DesktopContact(std::string uid, std::u16string lastName) {
  ContactData contact;
  contact.uid = std::move(uid);
  contact.lastName = std::move(lastName);
  return contact;
}

std::string PersonCard(const std::string& name) {
  return WriteCard("UID:" + name + "\nN:" + name + ";;;;");
}

class AddressBooksTest : public testing::Test {
 protected:
  using Oids = std::vector<std::int32_t>;

  void Put(std::u16string_view path, const std::string& content) {
    ASSERT_TRUE(m_files.PutFile(path, support::ToBytes(content)));
  }

  /// A new start of the program. Whether the log-on went well.
  bool Start(std::optional<SourceChoice> choice = std::nullopt) {
    AddressBooks::Options options;
    options.choice = std::move(choice);
    options.desktop = &m_desktop;
    options.oidsInUse = [this] { return m_inUse; };
    options.changesNothing = m_changesNothing;
    m_store = std::make_unique<AddressBooks>(*m_seen, m_registry, std::move(options));
    return m_store->Initialize() && m_store->Connect() && m_store->Logon();
  }

  std::string Names() {
    std::string names;
    for (std::int32_t i = 1; i <= m_store->GetCount(); ++i) {
      names += text::ToUtf8((*m_store->GetItem(i))->GetLastName().value()) + ".";
    }
    return names;
  }

  std::int32_t Oid(std::int32_t index) { return (*m_store->GetItem(index))->GetOid().value(); }

  /// Why the contact cannot be found; nothing if it can.
  std::optional<ContactsError> LookUp(std::int32_t oid) {
    return support::ErrorOf(m_store->GetItemFromOid(oid));
  }

  void SetDesktopTo(std::vector<ContactData> contacts, bool isComplete = true) {
    m_desktop.books = std::vector<Book>{{u"eds:book", std::move(contacts), isComplete}};
  }

  machine::MemoryFileSystem m_files;
  platform::FileSystem* m_seen = &m_files;
  machine::MemoryRegistry m_registry;
  bool m_changesNothing = false;
  SetDesktop m_desktop;
  platform::Result<Oids, platform::RegistryError> m_inUse;
  std::unique_ptr<AddressBooks> m_store;
};

// Which address book is read.

TEST_F(AddressBooksTest, TheDesktopIsReadWhereItHasContacts) {
  Put(u"\\contacts.vcf", PersonCard("File"));
  SetDesktopTo({DesktopContact("a", u"Desktop")});
  ASSERT_TRUE(Start());
  EXPECT_EQ(Names(), "Desktop.");
}

TEST_F(AddressBooksTest, TheDevicesFileIsReadWhereNoServerAnswers) {
  Put(u"\\contacts.vcf", PersonCard("File"));
  ASSERT_TRUE(Start());
  EXPECT_EQ(Names(), "File.");
}

TEST_F(AddressBooksTest, TheDevicesFileIsReadWhereTheDesktopHasNoContacts) {
  Put(u"\\contacts.vcf", PersonCard("File"));
  SetDesktopTo({});
  ASSERT_TRUE(Start());
  EXPECT_EQ(Names(), "File.");
}

TEST_F(AddressBooksTest, ADesktopThatCannotBeReadToItsEndIsNotPassedOver) {
  Put(u"\\contacts.vcf", PersonCard("File"));
  m_desktop.Fail(BooksError::Kind::kUnreadable);
  EXPECT_FALSE(Start());
}

TEST_F(AddressBooksTest, ANewcomerHasNoContacts) {
  EXPECT_TRUE(Start());
  EXPECT_EQ(m_store->GetCount(), 0);
  EXPECT_EQ(m_store->GetProblem(), AddressBooks::Problem::kNothingChosen);
  SetDesktopTo({});
  EXPECT_TRUE(Start());
  EXPECT_EQ(m_store->GetCount(), 0);
  EXPECT_EQ(m_store->GetProblem(), AddressBooks::Problem::kNothingChosen);
}

TEST_F(AddressBooksTest, ADefaultFolderWithoutAVcardIsThatOfANewcomer) {
  ASSERT_TRUE(m_files.CreateFolder(u"\\contacts.vcf"));
  EXPECT_TRUE(Start());
  EXPECT_EQ(m_store->GetCount(), 0);
  EXPECT_EQ(m_store->GetProblem(), AddressBooks::Problem::kNothingChosen);
  Put(u"\\contacts.vcf\\torn.vcf", "BEGIN:VCARD\r\n");
  EXPECT_FALSE(Start());
  EXPECT_EQ(m_store->GetProblem(), AddressBooks::Problem::kUnreadable);
}

TEST_F(AddressBooksTest, NoContactsAnywhereIsAFailureWhereTagsNeedThem) {
  m_inUse = Oids{17};
  EXPECT_FALSE(Start());
  EXPECT_EQ(m_store->GetProblem(), AddressBooks::Problem::kNothingChosen);
  SetDesktopTo({});
  EXPECT_FALSE(Start());
}

TEST_F(AddressBooksTest, NoContactsAnywhereIsAFailureWhereNobodyKnowsWhetherTagsNeedThem) {
  m_inUse = platform::Failure(platform::RegistryError::kBusy);
  EXPECT_FALSE(Start());
}

TEST_F(AddressBooksTest, ADefaultFileThatCannotBeReadIsAFailure) {
  Put(u"\\contacts.vcf", "no card at all");
  EXPECT_FALSE(Start());
  EXPECT_EQ(m_store->GetProblem(), AddressBooks::Problem::kUnreadable);
}

TEST_F(AddressBooksTest, AChoiceIsRememberedOnceItWorked) {
  SetDesktopTo({DesktopContact("a", u"Desktop")});
  EXPECT_FALSE(Start(SourceChoice{u"/all.vcf"}));
  ASSERT_TRUE(Start());
  EXPECT_EQ(Names(), "Desktop.");
  Put(u"/all.vcf", PersonCard("Ann"));
  ASSERT_TRUE(Start(SourceChoice{u"/all.vcf"}));
  ASSERT_TRUE(Start());
  EXPECT_EQ(Names(), "Ann.");
  ASSERT_TRUE(Start(SourceChoice{}));
  ASSERT_TRUE(Start());
  EXPECT_EQ(Names(), "Desktop.");
}

TEST_F(AddressBooksTest, AChosenDesktopIsNotReplacedByTheFile) {
  Put(u"\\contacts.vcf", PersonCard("File"));
  EXPECT_FALSE(Start(SourceChoice{}));
}

TEST_F(AddressBooksTest, TellsWhyALogonFailed) {
  using Problem = AddressBooks::Problem;
  EXPECT_TRUE(Start());
  EXPECT_EQ(m_store->GetProblem(), Problem::kNothingChosen);
  EXPECT_FALSE(Start(SourceChoice{}));
  EXPECT_EQ(m_store->GetProblem(), Problem::kNoServer);
  EXPECT_FALSE(Start(SourceChoice{u"/all.vcf"}));
  EXPECT_EQ(m_store->GetProblem(), Problem::kUnreadable);
  m_desktop.Fail(BooksError::Kind::kUnreadable);
  EXPECT_FALSE(Start());
  EXPECT_EQ(m_store->GetProblem(), Problem::kUnreadable);
  Put(u"/all.vcf", PersonCard("Ann"));
  m_inUse = Oids{17};
  EXPECT_FALSE(Start(SourceChoice{u"/all.vcf"}));
  EXPECT_EQ(m_store->GetProblem(), Problem::kTagsElsewhere);
  m_inUse = platform::Failure(platform::RegistryError::kBusy);
  EXPECT_FALSE(Start(SourceChoice{u"/all.vcf"}));
  EXPECT_EQ(m_store->GetProblem(), Problem::kStore);
  m_inUse = Oids();
  EXPECT_TRUE(Start(SourceChoice{u"/all.vcf"}));
  EXPECT_EQ(m_store->GetProblem(), std::nullopt);
}

// Numbers and lookup.

TEST_F(AddressBooksTest, ContactsAreFoundByNumberOverRestarts) {
  Put(u"/all.vcf", PersonCard("Ann") + PersonCard("Bob"));
  ASSERT_TRUE(Start(SourceChoice{u"/all.vcf"}));
  const std::int32_t bob = Oid(2);
  Put(u"/all.vcf", PersonCard("Zoe") + PersonCard("Bob") + PersonCard("Ann"));
  ASSERT_TRUE(Start());
  const auto contact = m_store->GetItemFromOid(bob);
  ASSERT_TRUE(contact);
  EXPECT_EQ((*contact)->GetLastName(), u"Bob");
}

TEST_F(AddressBooksTest, ADeletedContactIsAbsent) {
  Put(u"/all.vcf", PersonCard("Ann") + PersonCard("Bob"));
  ASSERT_TRUE(Start(SourceChoice{u"/all.vcf"}));
  const std::int32_t ann = Oid(1);
  m_inUse = Oids{ann};
  Put(u"/all.vcf", PersonCard("Bob"));
  ASSERT_TRUE(Start());
  EXPECT_EQ(LookUp(ann), ContactsError::kAbsent);
}

TEST_F(AddressBooksTest, ANumberThatNobodyEverHadIsNotAbsent) {
  Put(u"/all.vcf", PersonCard("Ann"));
  ASSERT_TRUE(Start(SourceChoice{u"/all.vcf"}));
  EXPECT_EQ(LookUp(Oid(1) + 1), ContactsError::kFailed);
  EXPECT_EQ(LookUp(0), ContactsError::kFailed);
}

TEST_F(AddressBooksTest, AnItemOutsideTheCollectionFails) {
  Put(u"/all.vcf", PersonCard("Ann"));
  ASSERT_TRUE(Start(SourceChoice{u"/all.vcf"}));
  for (const std::int32_t index : {-1, 0, 2}) {
    EXPECT_FALSE(m_store->GetItem(index)) << index;
  }
}

// No tag is lost because an address book was away.

class AddressBooksInUse : public AddressBooksTest {
 protected:
  void SetUp() override {
    Put(u"/all.vcf", PersonCard("Ann") + PersonCard("Bob"));
    ASSERT_TRUE(Start(SourceChoice{u"/all.vcf"}));
    m_ann = Oid(1);
    m_inUse = Oids{m_ann};
    ASSERT_TRUE(Start());
  }

  /// The log-on fails, and Ann is not taken for absent even by who asks all the same.
  void ExpectRefused(std::optional<SourceChoice> choice = std::nullopt) {
    EXPECT_FALSE(Start(std::move(choice)));
    EXPECT_EQ(m_store->GetCount(), 0);
    EXPECT_EQ(LookUp(m_ann), ContactsError::kFailed);
  }

  std::int32_t m_ann = 0;
};

TEST_F(AddressBooksInUse, AMissingFileEndsTheLogon) {
  ASSERT_TRUE(m_files.Delete(u"/all.vcf"));
  ExpectRefused();
}

TEST_F(AddressBooksInUse, AnEmptiedFileEndsTheLogon) {
  Put(u"/all.vcf", "");
  ExpectRefused();
}

TEST_F(AddressBooksInUse, AFileOfSomethingElseEndsTheLogon) {
  Put(u"/all.vcf", "<html></html>");
  ExpectRefused();
}

TEST_F(AddressBooksInUse, AFileTornBeforeTheContactEndsTheLogon) {
  Put(u"/all.vcf", PersonCard("Bob") + PersonCard("Ann").substr(0, 30));
  ExpectRefused();
}

TEST_F(AddressBooksInUse, AFileTornBehindTheContactDoesNot) {
  Put(u"/all.vcf", PersonCard("Ann") + PersonCard("Bob").substr(0, 30));
  EXPECT_TRUE(Start());
}

TEST_F(AddressBooksInUse, AnotherFileEndsTheLogonAndIsNotRemembered) {
  Put(u"/other.vcf", PersonCard("Ann"));
  ExpectRefused(SourceChoice{u"/other.vcf"});
  ASSERT_TRUE(Start());
  EXPECT_EQ(LookUp(m_ann), std::nullopt);
}

TEST_F(AddressBooksInUse, AFileThatWasMovedKeepsTheNumbersOfItsContacts) {
  ASSERT_TRUE(m_files.Delete(u"/all.vcf"));
  Put(u"/moved.vcf", PersonCard("Cy") + PersonCard("Ann"));
  ASSERT_TRUE(Start(SourceChoice{u"/moved.vcf"}));
  EXPECT_EQ(LookUp(m_ann), std::nullopt);
  ASSERT_TRUE(Start()) << "The new place is remembered.";
  EXPECT_EQ(LookUp(m_ann), std::nullopt);
  EXPECT_EQ(Oid(2), m_ann);
  Put(u"\\own.vcf", PersonCard("Cy") + PersonCard("Ann"));
  ASSERT_TRUE(Start(SourceChoice{u"\\own.vcf"})) << "A copy on the device may take its place.";
  EXPECT_EQ(Oid(2), m_ann);
}

// A command that only reads may use the new place, and leaves the numbers with the old one.
TEST_F(AddressBooksInUse, AReaderStoresNoMoveOfAFile) {
  ASSERT_TRUE(m_files.Delete(u"/all.vcf"));
  Put(u"/moved.vcf", PersonCard("Ann"));
  m_changesNothing = true;
  ASSERT_TRUE(Start(SourceChoice{u"/moved.vcf"}));
  EXPECT_EQ(LookUp(m_ann), std::nullopt);
  m_changesNothing = false;
  ExpectRefused();
  Put(u"/all.vcf", PersonCard("Ann"));
  ASSERT_TRUE(Start());
  EXPECT_EQ(Oid(1), m_ann);
}

/// The folder of the first file cannot be searched now, as on a drive that does not answer.
class FirstFileOutOfSight final : public support::WatchedFileSystem {
 public:
  using WatchedFileSystem::WatchedFileSystem;

  platform::Result<std::unique_ptr<platform::FileSearch>, platform::FileError> Find(
      std::u16string_view pattern) override {
    return pattern == u"/all.vcf" ? platform::Failure(platform::FileError::kOther)
                                  : WatchedFileSystem::Find(pattern);
  }
};

TEST_F(AddressBooksInUse, AFileThatCannotBeLookedForIsNotTheOneThatWasMoved) {
  FirstFileOutOfSight files(m_files);
  m_seen = &files;
  Put(u"/other.vcf", PersonCard("Ann"));
  ExpectRefused(SourceChoice{u"/other.vcf"});
  m_store.reset();
}

TEST_F(AddressBooksInUse, AFileWithoutTheContactsOfAllTagsIsNotTheOneThatWasMoved) {
  ASSERT_TRUE(m_files.Delete(u"/all.vcf"));
  Put(u"/moved.vcf", PersonCard("Bob"));
  ExpectRefused(SourceChoice{u"/moved.vcf"});
  Put(u"/all.vcf", PersonCard("Ann") + PersonCard("Bob"));
  ASSERT_TRUE(Start());
  EXPECT_EQ(LookUp(m_ann), std::nullopt);
}

TEST_F(AddressBooksInUse, AServerThatDoesNotAnswerEndsTheLogon) {
  SetDesktopTo({DesktopContact("a", u"Lee")});
  m_inUse = Oids();
  ASSERT_TRUE(Start(SourceChoice{}));
  m_inUse = Oids{Oid(1)};
  m_desktop.Fail(BooksError::Kind::kNoAnswer);
  EXPECT_FALSE(Start());
}

TEST_F(AddressBooksInUse, ABookOfTheDesktopThatIsOffNowEndsTheLogon) {
  SetDesktopTo({DesktopContact("a", u"Lee")});
  m_desktop.books->push_back({u"eds:other", {DesktopContact("b", u"Ray")}, true});
  m_inUse = Oids();
  ASSERT_TRUE(Start(SourceChoice{}));
  m_inUse = Oids{Oid(2)};
  m_desktop.books->pop_back();
  EXPECT_FALSE(Start());
}

TEST_F(AddressBooksInUse, ABookThatMayStillBeFillingUpMakesNobodyAbsent) {
  SetDesktopTo({DesktopContact("a", u"Lee"), DesktopContact("b", u"Ray")});
  m_inUse = Oids();
  ASSERT_TRUE(Start(SourceChoice{}));
  const std::int32_t lee = Oid(1);
  SetDesktopTo({DesktopContact("b", u"Ray")}, false);
  ASSERT_TRUE(Start());
  EXPECT_EQ(LookUp(lee), ContactsError::kFailed);
  m_inUse = Oids{lee};
  EXPECT_FALSE(Start());
}

class AddressBooksDefault : public AddressBooksTest {
 protected:
  void SetUp() override {
    Put(u"\\contacts.vcf", PersonCard("Ann"));
    ASSERT_TRUE(Start());
    m_inUse = Oids{Oid(1)};
  }
};

TEST_F(AddressBooksDefault, ADesktopThatComesUpDoesNotReplaceTheFileThatTagsBelongTo) {
  SetDesktopTo({DesktopContact("a", u"Lee")});
  ASSERT_TRUE(Start());
  EXPECT_EQ(Names(), "Ann.");
}

TEST_F(AddressBooksDefault, ADesktopThatFailsDoesNotReplaceTheFileThatTagsBelongTo) {
  m_desktop.Fail(BooksError::Kind::kUnreadable);
  ASSERT_TRUE(Start());
  EXPECT_EQ(Names(), "Ann.");
}

TEST_F(AddressBooksDefault, AFileThatIsAwayIsNotReplacedByTheDesktop) {
  SetDesktopTo({DesktopContact("a", u"Lee")});
  Put(u"\\contacts.vcf", "");
  EXPECT_FALSE(Start());
}

TEST_F(AddressBooksDefault, AStoreThatTakesNoNumbersIsNoReasonToPassOverTheDesktop) {
  m_inUse = Oids();
  SetDesktopTo({DesktopContact("a", u"Lee")});
  support::WatchedRegistry failing(m_registry);
  AddressBooks::Options options;
  options.desktop = &m_desktop;
  bool hasFailed = true;
  for (std::size_t call = 1; hasFailed; ++call) {
    failing.FailCall(call, support::Failing::kOnce, platform::RegistryError::kBusy);
    m_store = std::make_unique<AddressBooks>(m_files, failing, options);
    const bool isOpen = m_store->Connect() && m_store->Logon();
    hasFailed = failing.HasFailed();
    EXPECT_EQ(isOpen, !hasFailed) << call;
    EXPECT_EQ(Names(), hasFailed ? "" : "Lee.") << call;
    EXPECT_EQ(m_store->GetProblem(),
              hasFailed ? std::optional(AddressBooks::Problem::kStore) : std::nullopt)
        << call;
  }
}

// What only reads leaves no trace.

class AddressBooksReading : public AddressBooksTest {
 protected:
  /// A log-on that may not change anything, over a registry that fails at the first write.
  bool StartReading(std::optional<SourceChoice> choice = std::nullopt) {
    AddressBooks::Options options;
    options.choice = std::move(choice);
    options.desktop = &m_desktop;
    options.oidsInUse = [this] { return m_inUse; };
    options.changesNothing = true;
    m_store = std::make_unique<AddressBooks>(m_files, m_frozen, std::move(options));
    return m_store->Initialize() && m_store->Connect() && m_store->Logon();
  }

  support::WatchedRegistry m_frozen{m_registry, platform::RegistryError::kReadOnly};
};

TEST_F(AddressBooksReading, ANewContactHasTheNumberThatLearningThenGives) {
  Put(u"/all.vcf", PersonCard("Ann"));
  ASSERT_TRUE(Start(SourceChoice{u"/all.vcf"}));
  Put(u"/all.vcf",
      PersonCard("Bob") + PersonCard("Ann") + WriteCard("N:Zoe;;;;") + WriteCard("N:Zoe;;;;"));
  ASSERT_TRUE(StartReading());
  const std::vector<std::int32_t> shown = {Oid(1), Oid(2), Oid(3), Oid(4)};
  ASSERT_TRUE(StartReading());
  EXPECT_EQ(shown, (std::vector{Oid(1), Oid(2), Oid(3), Oid(4)}));
  ASSERT_TRUE(Start());
  EXPECT_EQ(shown, (std::vector{Oid(1), Oid(2), Oid(3), Oid(4)}));
  EXPECT_EQ(m_frozen.CountRefusals(), 0U);
}

TEST_F(AddressBooksReading, NoChoiceIsRememberedAndNoKeyIsMade) {
  Put(u"/all.vcf", PersonCard("Ann"));
  ASSERT_TRUE(StartReading(SourceChoice{u"/all.vcf"}));
  EXPECT_EQ(Names(), "Ann.");
  EXPECT_EQ(m_frozen.CountRefusals(), 0U);
  EXPECT_FALSE(support::KeyExists(m_registry, u"Software\\Zedra\\Voxtrel Contacts"));
  ASSERT_TRUE(StartReading());
  EXPECT_EQ(m_store->GetCount(), 0);
}

TEST_F(AddressBooksReading, EveryBookOfTheDesktopHasItsNumbers) {
  SetDesktopTo({DesktopContact("a", u"Lee")});
  m_desktop.books->push_back({u"eds:other", {DesktopContact("a", u"Ray")}, true});
  ASSERT_TRUE(StartReading());
  const std::vector<std::int32_t> shown = {Oid(1), Oid(2)};
  EXPECT_NE(shown[0], shown[1]);
  ASSERT_TRUE(Start());
  EXPECT_EQ(shown, (std::vector{Oid(1), Oid(2)}));
}

TEST_F(AddressBooksReading, TagsAreGuardedAsEver) {
  Put(u"/all.vcf", PersonCard("Ann"));
  m_inUse = Oids{17};
  EXPECT_FALSE(StartReading(SourceChoice{u"/all.vcf"}));
  EXPECT_EQ(m_store->GetProblem(), AddressBooks::Problem::kTagsElsewhere);
}

TEST_F(AddressBooksInUse, ATornCardIsNamedAndNobodyIsTakenForAbsent) {
  Put(u"/all.vcf", PersonCard("Bob") + "BEGIN:VCARD\r\nN:Ann;;;;\r\n");
  EXPECT_FALSE(Start());
  EXPECT_EQ(m_store->GetProblem(), AddressBooks::Problem::kTagsElsewhere);
  ASSERT_EQ(m_store->GetRemarks().size(), 1U);
  EXPECT_EQ(m_store->GetRemarks()[0].place, u"/all.vcf");
  EXPECT_EQ(m_store->GetRemarks()[0].line, 6U);
}

// A registry of the time when a contact without a UID was known by its content.

class FormerAddressBooks : public AddressBooksTest {
 protected:
  /// Gives the number 17 to the contact of that content in /all.vcf, which a tag uses.
  void PutFormerEntry(const std::string& content) {
    const Digest digest = ComputeDigest("content:" + content);
    std::vector<std::byte> entry(digest.begin(), digest.end());
    entry.insert(entry.end(), {std::byte{17}, std::byte{0}, std::byte{0}, std::byte{0}});
    constexpr std::u16string_view kBook = u"Software\\Zedra\\Voxtrel Contacts\\1";
    ASSERT_EQ(support::ErrorOf(support::PutText(m_registry, kBook, u"source", u"vcard:/all.vcf")),
              std::nullopt);
    ASSERT_EQ(support::ErrorOf(
                  support::Put(m_registry, kBook, u"0", platform::RegistryType::kBinary, entry)),
              std::nullopt);
    m_inUse = Oids{17};
  }
};

TEST_F(FormerAddressBooks, AContactWithTwoMobileNumbersKeepsTheNumberOfAFormerEntry) {
  PutFormerEntry("\nLee\n\n\n\n\n\n1\n\n\n\n\n\n\n");
  Put(u"/all.vcf", WriteCard("N:Lee;;;;\nTEL;CELL:1\nTEL;CELL:2", "2.1"));
  ASSERT_TRUE(Start(SourceChoice{u"/all.vcf"}));
  EXPECT_EQ(Oid(1), 17);
  Put(u"/all.vcf", WriteCard("UID:new\nN:Lee;;;;\nTEL;CELL:3", "2.1"));
  ASSERT_TRUE(Start());
  EXPECT_EQ(Oid(1), 17);
}

TEST_F(FormerAddressBooks, ANameThatWasReadAsItsBase64KeepsTheNumberOfAFormerEntry) {
  PutFormerEntry("\nTGVlO0Fubjs7Ow==\n\n\n\n\n\n1\n\n\n\n\n\n\n");
  Put(u"/all.vcf", WriteCard("N;ENCODING=B:TGVlO0Fubjs7Ow==\nTEL;CELL:1", "2.1"));
  ASSERT_TRUE(Start(SourceChoice{u"/all.vcf"}));
  EXPECT_EQ(Oid(1), 17);
  Put(u"/all.vcf", WriteCard("N:Lee;Ann;;;\nTEL;CELL:3", "2.1"));
  ASSERT_TRUE(Start());
  EXPECT_EQ(Oid(1), 17) << "it is known by its name now";
}

// A registry without room.

TEST_F(AddressBooksInUse, AFullRegistryKeepsNobodyFromHisContacts) {
  Put(u"/copy.vcf", PersonCard("Ann"));
  support::WatchedRegistry full(m_registry, platform::RegistryError::kFull);
  AddressBooks::Options options;
  options.choice = SourceChoice{u"/copy.vcf"};
  AddressBooks copy(m_files, full, options);
  ASSERT_TRUE(copy.Connect() && copy.Logon());
  EXPECT_EQ(copy.GetCount(), 1);
  std::vector<std::string> said;
  for (const Remark& remark : copy.GetRemarks()) {
    said.push_back(remark.text);
  }
  EXPECT_EQ(said,
            (std::vector<std::string>{"the choice of the address book cannot be remembered",
                                      "new contacts cannot be remembered: the disk is full"}));
  ASSERT_TRUE(Start());
  EXPECT_EQ(Names(), "Ann.Bob.") << "the other book was not remembered";
}

TEST_F(AddressBooksInUse, AnotherProgramsValuesInTheMapAreNamedAndStopNothing) {
  ASSERT_EQ(
      support::ErrorOf(support::Put(m_registry, u"Software\\Zedra\\Voxtrel Contacts\\1", u"0",
                                    platform::RegistryType::kBinary, std::vector<std::byte>(19))),
      std::nullopt);
  ASSERT_TRUE(Start());
  EXPECT_EQ(LookUp(m_ann), std::nullopt);
  ASSERT_EQ(m_store->GetRemarks().size(), 1U);
  EXPECT_EQ(m_store->GetRemarks()[0].place, u"Software\\Zedra\\Voxtrel Contacts\\1");
}

TEST_F(AddressBooksInUse, TagsThatCannotBeCountedEndTheLogon) {
  m_inUse = platform::Failure(platform::RegistryError::kBusy);
  ExpectRefused();
}

TEST_F(AddressBooksInUse, ATagOfANumberThatNobodyEverHadEndsTheLogon) {
  m_inUse = Oids{m_ann, 12345};
  ExpectRefused();
}

TEST_F(AddressBooksInUse, AStoreThatCannotBeReadEndsTheConnection) {
  support::WatchedRegistry failing(m_registry);
  AddressBooks::Options options;
  options.desktop = &m_desktop;
  bool hasFailed = true;
  for (std::size_t call = 1; hasFailed; ++call) {
    failing.FailCall(call, support::Failing::kOnce, platform::RegistryError::kBusy);
    AddressBooks store(m_files, failing, options);
    const bool isOpen = store.Connect() && store.Logon();
    hasFailed = failing.HasFailed();
    EXPECT_EQ(isOpen, !hasFailed) << call;
    EXPECT_EQ(store.GetCount(), hasFailed ? 0 : 2);
  }
}

TEST_F(AddressBooksInUse, ALostStoreGivesContactsTheirNumbersBack) {
  machine::MemoryRegistry fresh;
  AddressBooks::Options options;
  options.choice = SourceChoice{u"/all.vcf"};
  options.desktop = &m_desktop;
  AddressBooks store(m_files, fresh, options);
  ASSERT_TRUE(store.Connect() && store.Logon());
  EXPECT_TRUE(store.GetItemFromOid(m_ann));
}

}  // namespace
}  // namespace vcard
