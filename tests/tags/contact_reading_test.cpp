#include "tags/contact_reading.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "storage/phone_types.h"
#include "tests/machine/simulated_contacts.h"
#include "tests/support/results.h"
#include "tests/support/watched_clock.h"

namespace tags {
namespace {

using Failure = ContactFailure;
using Opening = machine::SimulatedContacts::Opening;
using machine::SimulatedContact;
using machine::SimulatedContacts;

class ContactOpening : public testing::Test {
 protected:
  /// The message if that fails.
  std::optional<ContactMessage> Open() { return support::ErrorOf(OpenContacts(m_store, m_clock)); }

  SimulatedContacts m_store;
  support::WatchedClock m_clock;
};

TEST_F(ContactOpening, LogsOnWithoutAPauseIfAllWorks) {
  EXPECT_EQ(Open(), std::nullopt);
  EXPECT_TRUE(m_store.IsLoggedOn());
  EXPECT_TRUE(m_clock.GetSleeps().empty());
}

TEST_F(ContactOpening, EndsAtOnceWithoutTheService) {
  m_store.FailOpening(Opening::kInitialize);
  EXPECT_EQ(Open(), ContactMessage{ContactFailure::kServiceNotReady});
  EXPECT_EQ(m_store.CountCalls(Opening::kConnect), 0);
}

TEST_F(ContactOpening, TriesASecondTimeAfter200Milliseconds) {
  m_store.FailOpening(Opening::kConnect, 1);
  EXPECT_EQ(Open(), std::nullopt);
  EXPECT_EQ(m_clock.GetSleeps(), std::vector<std::uint32_t>({200}));
}

TEST_F(ContactOpening, TriesAThirdTimeAfterAnother200Milliseconds) {
  m_store.FailOpening(Opening::kConnect, 2);
  EXPECT_EQ(Open(), std::nullopt);
  EXPECT_EQ(m_clock.GetSleeps(), std::vector<std::uint32_t>({200, 200}));
}

TEST_F(ContactOpening, GivesUpAfterTheThirdAttempt) {
  m_store.FailOpening(Opening::kConnect);
  EXPECT_EQ(Open(), ContactMessage{ContactFailure::kNotConnected});
  EXPECT_EQ(m_store.CountCalls(Opening::kConnect), 3);
  EXPECT_EQ(m_clock.GetSleeps(), std::vector<std::uint32_t>({200, 200}));
  EXPECT_EQ(m_store.CountCalls(Opening::kLogon), 0);
}

TEST_F(ContactOpening, TriesTheLogonOnce) {
  m_store.FailOpening(Opening::kLogon);
  EXPECT_EQ(Open(), ContactMessage{ContactFailure::kNotLoggedOn});
  EXPECT_EQ(m_store.CountCalls(Opening::kLogon), 1);
}

SimulatedContact Named(std::u16string first, std::u16string middle, std::u16string last,
                       std::u16string company = u"") {
  SimulatedContact contact;
  contact.oid = 1;
  contact.firstName = std::move(first);
  contact.middleName = std::move(middle);
  contact.lastName = std::move(last);
  contact.companyName = std::move(company);
  return contact;
}

std::u16string Long(std::size_t length, char16_t c = u'x') { return std::u16string(length, c); }

/// Reads one settable contact as the code under test gets it.
template <typename Read>
ReadTagText With(const SimulatedContact& contact, Read read) {
  machine::SimulatedContacts store;
  store.Add(contact);
  EXPECT_TRUE(store.Logon());
  return read(**store.GetItem(1));
}

ReadTagText RecordText(const SimulatedContact& contact, std::u16string_view phoneType,
                       ContactBuffers& buffers) {
  return With(contact,
              [&](platform::Contact& each) { return ReadForRecording(each, phoneType, buffers); });
}

ReadTagText RecordText(const SimulatedContact& contact, std::u16string_view phoneType = u"") {
  ContactBuffers buffers;
  return RecordText(contact, phoneType, buffers);
}

ReadTagText List(const SimulatedContact& contact, std::u16string_view phoneType = u"") {
  return With(contact, [&](platform::Contact& each) { return ReadForTagList(each, phoneType); });
}

TEST(ReadForRecording, NamesReadFirstMiddleLast) {
  EXPECT_EQ(RecordText(Named(u"Ann", u"May", u"Lee"))->text, u"Ann May Lee");
}

TEST(ReadForRecording, ABlankComesFirstWithoutAFirstName) {
  EXPECT_EQ(RecordText(Named(u"", u"", u"Lee", u"Acme"))->text, u" Lee");
}

TEST(ReadForRecording, ACompanyStandsInForAnEmptyName) {
  EXPECT_EQ(RecordText(Named(u"", u"", u"", u"Acme"))->text, u"Acme");
}

TEST(ReadForRecording, PartsAreAppendedWhileTheTotalStaysBelow128) {
  EXPECT_EQ(RecordText(Named(Long(100), u"", Long(26, u'l')))->text,
            Long(100) + u" " + Long(26, u'l'));
  EXPECT_EQ(RecordText(Named(Long(100), u"", Long(27, u'l')))->text, Long(100));
}

TEST(ReadForRecording, APartThatIsTooLongIsLeftOutAndTheNextOneTried) {
  EXPECT_EQ(RecordText(Named(Long(100), Long(27), u"Lee"))->text, Long(100) + u" Lee");
}

TEST(ReadForRecording, ALongerFirstNameLeavesTheNameThatWasReadBefore) {
  ContactBuffers buffers{u"Bob Ray", u"Old"};
  EXPECT_EQ(RecordText(Named(Long(128), u"", u"Lee"), u"", buffers)->text, u"Bob Ray Lee");
}

TEST(ReadForRecording, ALongerCompanyLeavesTheCompanyThatWasReadBefore) {
  ContactBuffers buffers{u"Bob Ray", u"Old"};
  EXPECT_EQ(RecordText(Named(u"", u"", u"", Long(128)), u"", buffers)->text, u"Old");
}

TEST(ReadForRecording, AFirstNameThatFailsToBeFollowedStaysInTheBuffer) {
  ContactBuffers buffers{u"Bob Ray", u"Old"};
  SimulatedContact contact = Named(u"Ann", u"", u"");
  contact.middleNameFails = true;
  EXPECT_FALSE(RecordText(contact, u"", buffers));
  EXPECT_EQ(buffers.name, u"Ann");
}

TEST(ReadForTagList, NamesReadFirstMiddleLast) {
  EXPECT_EQ(List(Named(u"Ann", u"May", u"Lee"))->text, u"Ann May Lee");
  EXPECT_EQ(List(Named(u"Ann", u"", u"Lee"))->text, u"Ann Lee");
}

TEST(ReadForTagList, ABlankComesFirstWithoutAFirstName) {
  EXPECT_EQ(List(Named(u"", u"", u"Lee", u"Acme"))->text, u" Lee");
}

TEST(ReadForTagList, ACompanyStandsInForAnEmptyName) {
  EXPECT_EQ(List(Named(u"", u"", u"", u"Acme"))->text, u"Acme");
  EXPECT_EQ(List(Named(u"", u"", u"", Long(127)))->text, Long(127));
  EXPECT_EQ(List(Named(u"", u"", u"", Long(128)))->text, u"");
}

TEST(ReadForTagList, TheBlankDoesNotCountTowardsTheLimit) {
  EXPECT_EQ(List(Named(Long(100), u"", Long(27, u'l')))->text, Long(100) + u" " + Long(27, u'l'));
  EXPECT_EQ(List(Named(Long(100), u"", Long(28, u'l')))->text, Long(100));
}

TEST(ReadForTagList, ALongerFirstNameIsNotTaken) {
  EXPECT_EQ(List(Named(Long(127), u"", u""))->text, Long(127));
  EXPECT_EQ(List(Named(Long(128), u"", u"Lee"))->text, u" Lee");
}

// What both readers do alike.

using TextReader = ReadTagText (*)(const SimulatedContact&, std::u16string_view);

struct ReaderRow {
  TextReader read;
  ContactReader reader;
};

std::ostream& operator<<(std::ostream& stream, const ReaderRow& row) {
  return stream << (row.reader == ContactReader::kRecording ? "Record" : "List");
}

class TagTexts : public testing::TestWithParam<ReaderRow> {};

INSTANTIATE_TEST_SUITE_P(Readers, TagTexts,
                         testing::Values(ReaderRow{static_cast<TextReader>(&RecordText),
                                                   ContactReader::kRecording},
                                         ReaderRow{&List, ContactReader::kTagList}));

TEST_P(TagTexts, EndWithTheNumberOfTheKindAndItsMark) {
  constexpr std::pair<std::u16string_view, std::u16string_view> kRows[] = {
      {u"Car", u"Ann Lee 50 C"},          {u"Radio", u"Ann Lee 51 R"},
      {u"Mobile", u"Ann Lee 52 M"},       {u"Assistant", u"Ann Lee 53 A"},
      {u"Business", u"Ann Lee 54 B"},     {u"Business2", u"Ann Lee 55 B2"},
      {u"BusinessFax", u"Ann Lee 56 Bx"}, {u"Home", u"Ann Lee 57 H"},
      {u"Home2", u"Ann Lee 58 H2"},       {u"HomeFax", u"Ann Lee 59 Hx"}};
  SimulatedContact contact = Named(u"Ann", u"", u"Lee");
  for (std::size_t i = 0; i < contact.numbers.size(); ++i) {
    contact.numbers[i] = {u'5', static_cast<char16_t>(u'0' + i)};
  }
  for (const auto& [word, text] : kRows) {
    const ReadTagText read = GetParam().read(contact, word);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->text, text);
    EXPECT_TRUE(read->hasNumber);
  }
}

TEST_P(TagTexts, AreTheBareNameForAWordThatNamesNoKind) {
  SimulatedContact contact = Named(u"Ann", u"", u"Lee");
  contact.numbers.fill(u"5");
  for (const std::u16string_view word : {u"Pager", u"mobile", u""}) {
    const ReadTagText read = GetParam().read(contact, word);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->text, u"Ann Lee");
    EXPECT_FALSE(read->hasNumber);
  }
}

TEST_P(TagTexts, KeepBothBlanksAroundAMissingNumber) {
  EXPECT_EQ(GetParam().read(Named(u"Ann", u"", u"Lee"), u"Home")->text, u"Ann Lee  H");
}

TEST_P(TagTexts, NameWhichPartOfTheNameFailed) {
  const std::pair<bool SimulatedContact::*, Failure> rows[] = {
      {&SimulatedContact::firstNameFails, Failure::kFirstName},
      {&SimulatedContact::middleNameFails, Failure::kMiddleName},
      {&SimulatedContact::lastNameFails, Failure::kLastName},
      {&SimulatedContact::companyNameFails, Failure::kCompanyName}};
  for (const auto& [fails, failure] : rows) {
    SimulatedContact contact = Named(u"Ann", u"", u"Lee");
    contact.*fails = true;
    const ContactMessage expected{failure, GetParam().reader};
    EXPECT_EQ(support::ErrorOf(GetParam().read(contact, u"Mobile")), expected);
  }
}

TEST_P(TagTexts, ReadTheCompanyBeforeTheNumber) {
  SimulatedContact contact = Named(u"Ann", u"", u"Lee");
  contact.companyNameFails = true;
  contact.numberFails.fill(true);
  const ContactMessage expected{Failure::kCompanyName, GetParam().reader};
  EXPECT_EQ(support::ErrorOf(GetParam().read(contact, u"Mobile")), expected);
}

TEST_P(TagTexts, NameWhichNumberFailed) {
  for (const storage::PhoneType& texts : storage::kPhoneTypes) {
    SimulatedContact contact = Named(u"Ann", u"", u"Lee");
    contact.FailNumber(texts.kind);
    const ContactMessage expected{Failure::kNumber, GetParam().reader, texts.kind};
    EXPECT_EQ(support::ErrorOf(GetParam().read(contact, texts.word)), expected);
  }
}

TEST_P(TagTexts, NeverReadAnotherNumberThanTheirOwn) {
  SimulatedContact contact = Named(u"Ann", u"", u"Lee");
  contact.numberFails.fill(true);
  contact.numberFails[static_cast<std::size_t>(PhoneKind::kHome)] = false;
  contact.Number(PhoneKind::kHome) = u"5";
  EXPECT_EQ(GetParam().read(contact, u"Home")->text, u"Ann Lee 5 H");
}

}  // namespace
}  // namespace tags
