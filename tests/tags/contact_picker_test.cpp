#include "tags/contact_picker.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "backends/headless/headless_dialog.h"
#include "backends/headless/headless_ui.h"
#include "framework/dialog.h"
#include "resources/dialogs.h"
#include "tests/machine/simulated_contacts.h"
#include "tests/support/results.h"

namespace tags {
namespace {

using machine::SimulatedContact;
using machine::SimulatedContacts;
using platform::ContactsError;
using testing::ElementsAre;
using testing::IsEmpty;
using Failure = ContactFailure;

SimulatedContact Named(std::int32_t oid, std::u16string last, std::u16string first = u"",
                       std::u16string middle = u"", std::u16string company = u"") {
  SimulatedContact contact;
  contact.oid = oid;
  contact.lastName = std::move(last);
  contact.firstName = std::move(first);
  contact.middleName = std::move(middle);
  contact.companyName = std::move(company);
  contact.Number(PhoneKind::kMobile) = u"555";
  return contact;
}

std::u16string LongText(std::size_t length, char16_t c = u'x') { return std::u16string(length, c); }

/// A picker with the boxes of the Learning page, and the messages that a user would see.
class Boxes {
 public:
  explicit Boxes(SimulatedContacts& store)
      : picker(store, [this](const ContactMessage& message) { Report(message); }) {}

  bool Load() {
    const auto loaded = picker.Load(m_window);
    if (!loaded) {
      Report(loaded.error());
    }
    return loaded.has_value();
  }
  void ListNumbers(std::int32_t index) { picker.ListNumbers(m_window, index); }

  [[nodiscard]] std::vector<std::u16string> GetContacts() const {
    return m_window.GetItems(resources::kContactComboId);
  }
  [[nodiscard]] std::vector<std::u16string> GetNumbers() const {
    return m_window.GetItems(resources::kNumberComboId);
  }
  [[nodiscard]] bool IsFirstContactSelected() const {
    return m_window.GetSelection(resources::kContactComboId) == 0;
  }
  [[nodiscard]] bool IsFirstNumberSelected() const {
    return m_window.GetSelection(resources::kNumberComboId) == 0;
  }

  ContactPicker picker;
  std::vector<ContactMessage> messages;
  bool wasFirstNumberSelected = false;  ///< When the latest message was shown.

 private:
  void Report(const ContactMessage& message) {
    messages.push_back(message);
    wasFirstNumberSelected = IsFirstNumberSelected();
  }

  headless::HeadlessUi m_ui;
  framework::CDialog m_page{resources::kLearningDialog, m_ui};
  headless::HeadlessDialog m_window{resources::kLearningDialog, m_page, nullptr};
};

class ContactPickerTest : public testing::Test {
 protected:
  SimulatedContact& Add(SimulatedContact contact) { return m_store.Add(std::move(contact)); }

  bool Load() {
    EXPECT_TRUE(m_store.Logon());
    return m_boxes.Load();
  }

  SimulatedContacts m_store;
  Boxes m_boxes{m_store};
  ContactPicker& m_picker = m_boxes.picker;
};

class ContactPickerLoad : public ContactPickerTest {};
class ContactPickerNumbers : public ContactPickerTest {};

TEST_F(ContactPickerLoad, AnEmptyStoreLeavesEverythingEmpty) {
  EXPECT_TRUE(Load());
  EXPECT_THAT(m_boxes.GetContacts(), IsEmpty());
  EXPECT_EQ(m_picker.GetOid(), 0U);
  EXPECT_FALSE(m_boxes.IsFirstContactSelected());
  EXPECT_EQ(m_picker.GetContacts().GetReportedCount(), 0);
}

TEST_F(ContactPickerLoad, NamesReadLastFirstMiddle) {
  Add(Named(1, u"Lee", u"Ann", u"May"));
  EXPECT_TRUE(Load());
  EXPECT_THAT(m_boxes.GetContacts(), ElementsAre(u"Lee Ann May"));
}

TEST_F(ContactPickerLoad, AMissingLastNameLeavesNoBlankInFront) {
  Add(Named(1, u"", u"Ann", u"May"));
  EXPECT_TRUE(Load());
  EXPECT_THAT(m_boxes.GetContacts(), ElementsAre(u"Ann May"));
}

TEST_F(ContactPickerLoad, ContactsKeepTheOrderOfTheStore) {
  Add(Named(1, u"Zoe"));
  Add(Named(2, u"Adam"));
  EXPECT_TRUE(Load());
  EXPECT_THAT(m_boxes.GetContacts(), ElementsAre(u"Zoe", u"Adam"));
}

TEST_F(ContactPickerLoad, ACompanyStandsInForAnEmptyNameOnly) {
  Add(Named(1, u"", u"", u"", u"Acme"));
  Add(Named(2, u"Lee", u"", u"", u"Acme"));
  EXPECT_TRUE(Load());
  EXPECT_THAT(m_boxes.GetContacts(), ElementsAre(u"Acme", u"Lee"));
}

TEST_F(ContactPickerLoad, ALastNameOf127CharactersIsTaken) {
  Add(Named(1, LongText(127)));
  EXPECT_TRUE(Load());
  EXPECT_THAT(m_boxes.GetContacts(), ElementsAre(LongText(127)));
}

TEST_F(ContactPickerLoad, ALongerLastNameLeavesTheNameOfTheContactBefore) {
  Add(Named(1, u"Lee", u"Ann"));
  Add(Named(2, LongText(128), u"Bob"));
  EXPECT_TRUE(Load());
  EXPECT_THAT(m_boxes.GetContacts(), ElementsAre(u"Lee Ann", u"Lee Ann Bob"));
}

TEST_F(ContactPickerLoad, ALongerCompanyLeavesTheCompanyOfTheContactBefore) {
  Add(Named(1, u"Lee", u"", u"", u"Acme"));
  Add(Named(2, u"", u"", u"", LongText(128)));
  EXPECT_TRUE(Load());
  EXPECT_THAT(m_boxes.GetContacts(), ElementsAre(u"Lee", u"Acme"));
}

TEST_F(ContactPickerLoad, AnEmptyCompanyEmptiesTheBuffer) {
  Add(Named(1, u"Lee", u"", u"", u"Acme"));
  Add(Named(2, u"", u"", u"", u""));
  EXPECT_TRUE(Load());
  EXPECT_THAT(m_boxes.GetContacts(), ElementsAre(u"Lee", u""));
}

TEST_F(ContactPickerLoad, APartIsAppendedWhileLengthsAddUpToLessThan128) {
  Add(Named(1, LongText(100), LongText(27, u'f'), u"m"));
  EXPECT_TRUE(Load());
  // 127 without the blank; with it one more than there is room for.
  EXPECT_THAT(m_boxes.GetContacts(), ElementsAre(LongText(100) + u" " + LongText(26, u'f')));
}

TEST_F(ContactPickerLoad, APartThatAddsUpTo128IsLeftOutAndTheNextOneTried) {
  Add(Named(1, LongText(100), LongText(28, u'f'), u"m"));
  EXPECT_TRUE(Load());
  EXPECT_THAT(m_boxes.GetContacts(), ElementsAre(LongText(100) + u" m"));
}

TEST_F(ContactPickerLoad, ACutNameEndsWithAWholeCharacter) {
  Add(Named(1, LongText(100), LongText(25, u'f') + u"\U0001F600"));
  EXPECT_TRUE(Load());
  EXPECT_THAT(m_boxes.GetContacts(), ElementsAre(LongText(100) + u" " + LongText(25, u'f')));
}

TEST_F(ContactPickerLoad, RecordsHoldNameOidAndKindsInReadingOrder) {
  SimulatedContact contact = Named(-7, u"Lee");
  contact.Number(PhoneKind::kHomeFax) = u"9";
  contact.Number(PhoneKind::kCar) = u"0";
  contact.Number(PhoneKind::kRadio) = u"1";
  Add(contact);
  EXPECT_TRUE(Load());
  const ContactRecord* record = m_picker.GetContacts().Find(0);
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(record->GetName(), u"Lee");
  EXPECT_EQ(record->oid, -7);
  EXPECT_THAT(record->phoneKinds, ElementsAre(2, 1, 0, 9, -1, -1, -1, -1, -1, -1));
  EXPECT_EQ(m_picker.GetOid(), static_cast<std::uint32_t>(-7));
}

TEST_F(ContactPickerLoad, AContactWithoutANumberIsPassedOver) {
  SimulatedContact none = Named(1, u"None");
  none.Number(PhoneKind::kMobile).clear();
  Add(none);
  Add(Named(2, u"Lee"));
  EXPECT_TRUE(Load());
  EXPECT_THAT(m_boxes.GetContacts(), ElementsAre(u"Lee"));
  EXPECT_EQ(m_picker.GetContacts().GetReportedCount(), 2);
  EXPECT_EQ(m_picker.GetContacts().GetCount(), 1);
  EXPECT_EQ(m_picker.GetContacts().Find(0)->oid, 2);
  EXPECT_EQ(m_picker.GetContacts().Find(1), nullptr);
}

TEST_F(ContactPickerLoad, NumbersOfTheFirstListedContactAloneAreShown) {
  SimulatedContact none = Named(1, u"None");
  none.Number(PhoneKind::kMobile).clear();
  Add(none);
  SimulatedContact first = Named(2, u"Lee");
  first.Number(PhoneKind::kHome) = u"111";
  Add(first);
  Add(Named(3, u"Ray"));
  EXPECT_TRUE(Load());
  EXPECT_THAT(m_boxes.GetNumbers(), ElementsAre(u"111 Home", u"555 Mobile"));
  EXPECT_TRUE(m_boxes.IsFirstContactSelected());
  EXPECT_TRUE(m_boxes.IsFirstNumberSelected());
  EXPECT_EQ(m_picker.GetOid(), 2U);
  EXPECT_EQ(m_picker.GetPhoneTypeWord(), u"");
}

TEST_F(ContactPickerLoad, ANumberOf95CharactersIsAccepted) {
  SimulatedContact contact = Named(1, u"Lee");
  contact.Number(PhoneKind::kMobile) = LongText(95, u'5');
  Add(contact);
  EXPECT_TRUE(Load());
  EXPECT_THAT(m_boxes.GetNumbers(), ElementsAre(LongText(95, u'5') + u" Mobile"));
}

TEST_F(ContactPickerLoad, ANumberOf96CharactersIsPassedOverWithoutAWord) {
  SimulatedContact contact = Named(1, u"Lee");
  contact.Number(PhoneKind::kMobile) = LongText(96, u'5');
  Add(contact);
  EXPECT_TRUE(Load());
  EXPECT_THAT(m_boxes.GetContacts(), IsEmpty());
  EXPECT_THAT(m_boxes.messages, IsEmpty());
}

TEST_F(ContactPickerLoad, EachNumberOf97CharactersIsReportedAndPassedOver) {
  SimulatedContact contact = Named(1, u"Lee");
  contact.Number(PhoneKind::kHome) = LongText(97, u'5');
  contact.Number(PhoneKind::kCar) = LongText(97, u'5');
  Add(contact);
  EXPECT_TRUE(Load());
  EXPECT_THAT(m_boxes.GetContacts(), ElementsAre(u"Lee"));
  EXPECT_THAT(m_boxes.GetNumbers(), ElementsAre(u"555 Mobile"));
  EXPECT_THAT(m_boxes.messages, ElementsAre(ContactMessage{Failure::kNumberTooLong},
                                            ContactMessage{Failure::kNumberTooLong}));
}

TEST_F(ContactPickerLoad, AFailingItemEndsTheInitialization) {
  Add(Named(1, u"Lee"));
  m_store.AddFailingItem();
  EXPECT_FALSE(Load());
  EXPECT_THAT(m_boxes.messages, ElementsAre(ContactMessage{Failure::kItem}));
  EXPECT_FALSE(m_boxes.IsFirstContactSelected());
  EXPECT_EQ(m_picker.GetOid(), 0U);
}

TEST_F(ContactPickerLoad, ANullContactIsReportedAndPassedOver) {
  m_store.AddNullContact();
  Add(Named(1, u"Lee"));
  EXPECT_TRUE(Load());
  EXPECT_THAT(m_boxes.messages, ElementsAre(ContactMessage{Failure::kNullContact}));
  EXPECT_THAT(m_boxes.GetContacts(), ElementsAre(u"Lee"));
}

TEST_F(ContactPickerLoad, AFailingFirstNameKeepsWhatWasGathered) {
  Add(Named(1, u"Lee"));
  Add(Named(2, u"Ray")).firstNameFails = true;
  Add(Named(3, u"Zoe"));
  EXPECT_TRUE(Load());
  EXPECT_THAT(m_boxes.messages, ElementsAre(ContactMessage{Failure::kFirstName}));
  EXPECT_THAT(m_boxes.GetContacts(), ElementsAre(u"Lee"));
  EXPECT_TRUE(m_boxes.IsFirstContactSelected());
  EXPECT_EQ(m_picker.GetOid(), 1U);
}

TEST_F(ContactPickerLoad, AFailingFirstNameOfTheFirstContactListsNobody) {
  Add(Named(1, u"Lee")).firstNameFails = true;
  Add(Named(2, u"Ray"));
  EXPECT_TRUE(Load());
  EXPECT_THAT(m_boxes.GetContacts(), IsEmpty());
  EXPECT_EQ(m_picker.GetOid(), 0U);
}

TEST_F(ContactPickerLoad, EveryOtherFailingPartOfTheNameEndsTheInitialization) {
  const std::pair<bool SimulatedContact::*, Failure> rows[] = {
      {&SimulatedContact::lastNameFails, Failure::kLastName},
      {&SimulatedContact::middleNameFails, Failure::kMiddleName},
      {&SimulatedContact::companyNameFails, Failure::kCompanyName}};
  for (const auto& [fails, failure] : rows) {
    SimulatedContacts store;
    store.Add(Named(1, u"Lee"));
    store.Add(Named(2, u"Ray")).*fails = true;
    ASSERT_TRUE(store.Logon());
    Boxes boxes(store);
    EXPECT_FALSE(boxes.Load());
    EXPECT_THAT(boxes.messages, ElementsAre(ContactMessage{failure}));
    EXPECT_EQ(boxes.picker.GetOid(), 0U);
  }
}

TEST_F(ContactPickerLoad, EveryPartOfTheNameIsReadBeforeTheFirstNumber) {
  const std::pair<bool SimulatedContact::*, Failure> rows[] = {
      {&SimulatedContact::lastNameFails, Failure::kLastName},
      {&SimulatedContact::firstNameFails, Failure::kFirstName},
      {&SimulatedContact::middleNameFails, Failure::kMiddleName},
      {&SimulatedContact::companyNameFails, Failure::kCompanyName}};
  for (const auto& [fails, failure] : rows) {
    SimulatedContacts store;
    SimulatedContact& contact = store.Add(Named(1, u"Lee"));
    contact.*fails = true;
    contact.numberFails.fill(true);
    ASSERT_TRUE(store.Logon());
    Boxes boxes(store);
    EXPECT_EQ(boxes.Load(), failure == Failure::kFirstName);
    EXPECT_THAT(boxes.messages, ElementsAre(ContactMessage{failure}));
  }
}

TEST_F(ContactPickerLoad, EveryFailingNumberEndsTheInitialization) {
  for (const PhoneKind kind : kReadingOrder) {
    SimulatedContacts store;
    store.Add(Named(1, u"Lee")).FailNumber(kind);
    ASSERT_TRUE(store.Logon());
    Boxes boxes(store);
    EXPECT_FALSE(boxes.Load());
    EXPECT_THAT(boxes.messages,
                ElementsAre(ContactMessage{Failure::kNumber, ContactReader::kLoading, kind}));
    EXPECT_THAT(boxes.GetContacts(), IsEmpty());
  }
}

TEST_F(ContactPickerLoad, AFailingOidListsTheContactUnderZero) {
  Add(Named(5, u"Lee")).oidFails = true;
  EXPECT_TRUE(Load());
  EXPECT_THAT(m_boxes.GetContacts(), ElementsAre(u"Lee"));
  EXPECT_THAT(m_boxes.messages, IsEmpty());
  EXPECT_EQ(m_picker.GetOid(), 0U);
}

TEST_F(ContactPickerNumbers, ListTheChosenContactsNumbersWithTheirSuffixes) {
  Add(Named(1, u"Lee"));
  SimulatedContact ray = Named(2, u"Ray");
  ray.Number(PhoneKind::kMobile) = u"9";
  ray.Number(PhoneKind::kHome2) = u"1";
  Add(ray);
  ASSERT_TRUE(Load());
  m_boxes.ListNumbers(1);
  EXPECT_THAT(m_boxes.GetNumbers(), ElementsAre(u"1 Home2", u"9 Mobile"));
  EXPECT_TRUE(m_boxes.IsFirstNumberSelected());
  EXPECT_EQ(m_picker.GetOid(), 2U);
  // The number that sorts first, and not the first in reading order.
  EXPECT_EQ(m_picker.GetPhoneTypeWord(), u"Home2");
}

TEST_F(ContactPickerNumbers, AContactThatIsGoneOnlyEmptiesTheBox) {
  Add(Named(1, u"Lee"));
  Add(Named(2, u"Ray"));
  ASSERT_TRUE(Load());
  for (const ContactsError error : {ContactsError::kAbsent, ContactsError::kFailed}) {
    m_boxes.messages.clear();
    m_store.SetLookup(2, error);
    m_boxes.ListNumbers(1);
    EXPECT_THAT(m_boxes.messages,
                ElementsAre(ContactMessage{Failure::kLookup, ContactReader::kSelection}));
    EXPECT_THAT(m_boxes.GetNumbers(), IsEmpty());
    EXPECT_EQ(m_picker.GetOid(), 1U);
    EXPECT_EQ(m_picker.GetPhoneTypeWord(), u"");
  }
}

TEST_F(ContactPickerNumbers, ASelectionOfNothingIsReportedLikeAMissingContact) {
  Add(Named(1, u"Lee"));
  ASSERT_TRUE(Load());
  m_boxes.ListNumbers(-1);
  EXPECT_THAT(m_boxes.messages,
              ElementsAre(ContactMessage{Failure::kLookup, ContactReader::kSelection}));
}

TEST_F(ContactPickerNumbers, AFailingNumberIsReportedAndTheOthersListed) {
  for (const PhoneKind kind : kReadingOrder) {
    SimulatedContacts store;
    SimulatedContact contact;
    contact.oid = 1;
    contact.numbers.fill(u"5");
    SimulatedContact& live = store.Add(contact);
    ASSERT_TRUE(store.Logon());
    Boxes boxes(store);
    ASSERT_TRUE(boxes.Load());
    live.FailNumber(kind);
    boxes.ListNumbers(0);
    EXPECT_THAT(boxes.messages,
                ElementsAre(ContactMessage{Failure::kNumber, ContactReader::kSelection, kind}));
    EXPECT_EQ(boxes.GetNumbers().size(), 9U);
  }
}

TEST_F(ContactPickerNumbers, TheFirstOneIsSelectedAfterEachThatWasAdded) {
  SimulatedContact contact = Named(1, u"Lee");
  contact.Number(PhoneKind::kCar) = u"1";
  SimulatedContact& lee = Add(contact);
  ASSERT_TRUE(Load());
  lee.FailNumber(PhoneKind::kCar);
  m_boxes.ListNumbers(0);
  ASSERT_EQ(m_boxes.messages.size(), 1U);
  EXPECT_TRUE(m_boxes.wasFirstNumberSelected) << "While the message about the second one stands.";
}

TEST_F(ContactPickerNumbers, NoNumberAtAllLeavesNoPhoneTypeWord) {
  SimulatedContact& lee = Add(Named(1, u"Lee"));
  ASSERT_TRUE(Load());
  m_boxes.ListNumbers(0);
  ASSERT_EQ(m_picker.GetPhoneTypeWord(), u"Mobile");
  lee.FailNumber(PhoneKind::kMobile);
  m_boxes.ListNumbers(0);
  EXPECT_EQ(m_picker.GetPhoneTypeWord(), u"");
  EXPECT_FALSE(m_boxes.IsFirstNumberSelected());
}

TEST_F(ContactPickerNumbers, ChoosingANumberTakesItsWord) {
  m_picker.ChooseNumber(u"+1 555 BusinessFax");
  EXPECT_EQ(m_picker.GetPhoneTypeWord(), u"BusinessFax");
}

TEST_F(ContactPickerTest, ReadsTheChosenContactForATag) {
  Add(Named(1, u"Smith", u"John"));
  ASSERT_TRUE(Load());
  m_picker.ChooseNumber(u"555 Mobile");
  const ReadTagText text = m_picker.ReadForTag();
  ASSERT_TRUE(text);
  EXPECT_EQ(text->text, u"John Smith 555 M");
}

TEST_F(ContactPickerTest, ReportsThatTheChosenContactIsGone) {
  Add(Named(1, u"Smith", u"John"));
  ASSERT_TRUE(Load());
  m_store.SetLookup(1, ContactsError::kFailed);
  const ContactMessage expected{Failure::kLookup, ContactReader::kRecording};
  EXPECT_EQ(support::ErrorOf(m_picker.ReadForTag()), expected);
}

}  // namespace
}  // namespace tags
