#include "dialer/callee.h"

#include <gmock/gmock.h>

#include <utility>

#include "tests/machine/simulated_contacts.h"

namespace {

using dialer::Callee;
using dialer::Candidate;
using platform::PhoneKind;
using testing::HasSubstr;

class CalleeTest : public testing::Test {
 protected:
  CalleeTest() {
    machine::SimulatedContact anna{.oid = 7, .firstName = u"Anna", .lastName = u"Berg"};
    anna.Number(PhoneKind::kMobile) = u"+1 202 555 0101";
    anna.Number(PhoneKind::kHome) = u"0800-FLOWERS";
    m_anna = &m_contacts.Add(std::move(anna));
    EXPECT_TRUE(m_contacts.Initialize() && m_contacts.Connect() && m_contacts.Logon());
  }

  [[nodiscard]] Callee Find(const Candidate& candidate) {
    return dialer::FindCallee(&m_contacts, candidate);
  }
  static Candidate Of(std::int32_t oid, std::u16string kind) {
    return {.tag = u"4711", .oid = oid, .phoneKind = std::move(kind)};
  }

  machine::SimulatedContacts m_contacts;
  machine::SimulatedContact* m_anna = nullptr;
};

TEST_F(CalleeTest, HasTheNameAsItIsSaidAndAsItIsListed) {
  m_anna->middleName = u"Maria";
  const Callee callee = Find(Of(7, u"Mobile"));
  EXPECT_EQ(callee.name, u"Anna Maria Berg");
  EXPECT_EQ(callee.listedName, u"Berg Anna Maria");
  EXPECT_EQ(callee.number, u"+1 202 555 0101");
  EXPECT_EQ(callee.fault, "");
  EXPECT_EQ(callee.candidate.tag, u"4711");
}

TEST_F(CalleeTest, ACompanyIsTheNameOfWhoeverHasNone) {
  *m_anna = {.oid = 7, .companyName = u"Berg & Son"};
  EXPECT_EQ(Find(Of(7, u"Mobile")).name, u"Berg & Son");
  EXPECT_EQ(Find(Of(7, u"Mobile")).listedName, u"Berg & Son");
  *m_anna = {.oid = 7};
  EXPECT_EQ(Find(Of(7, u"Mobile")).name, u"Contact 7");
}

TEST_F(CalleeTest, APartOfTheNameThatCannotBeReadIsLeftOut) {
  m_anna->firstNameFails = true;
  EXPECT_EQ(Find(Of(7, u"Mobile")).name, u"Berg");
  m_anna->lastNameFails = m_anna->companyNameFails = true;
  const Callee callee = Find(Of(7, u"Mobile"));
  EXPECT_EQ(callee.name, u"Contact 7");
  EXPECT_EQ(callee.fault, "") << "The number is known.";
}

TEST_F(CalleeTest, AnUnknownContactIsSaidByItsNumberAndCannotBeCalled) {
  const Callee callee = Find(Of(-17, u"Mobile"));
  EXPECT_EQ(callee.name, u"Contact -17");
  EXPECT_EQ(callee.listedName, u"Contact -17");
  EXPECT_EQ(callee.number, u"");
  EXPECT_THAT(callee.fault, HasSubstr("does not have this contact"));
  m_contacts.SetLookup(7, platform::ContactsError::kFailed);
  EXPECT_THAT(Find(Of(7, u"Mobile")).fault, HasSubstr("cannot be read"));
}

TEST_F(CalleeTest, WithoutContactsNobodyCanBeCalled) {
  const Callee callee = dialer::FindCallee(nullptr, Of(7, u"Mobile"));
  EXPECT_EQ(callee.name, u"Contact 7");
  EXPECT_THAT(callee.fault, HasSubstr("cannot be read"));
}

TEST_F(CalleeTest, ATagThatNamesNobodyIsSaidByItsName) {
  const Callee callee = Find({.tag = u"4711", .oid = {}, .phoneKind = u"Mobile"});
  EXPECT_EQ(callee.name, u"Voice tag 4711");
  EXPECT_THAT(callee.fault, HasSubstr("no contact"));
}

TEST_F(CalleeTest, ANumberThatIsGoneOrMayNotBeDialledIsAFault) {
  EXPECT_THAT(Find(Of(7, u"Car")).fault, HasSubstr("Car"));
  EXPECT_THAT(Find(Of(7, u"Boat")).fault, HasSubstr("no kind"));
  const Callee letters = Find(Of(7, u"Home"));
  EXPECT_EQ(letters.number, u"0800-FLOWERS") << "It is shown, so that the user dials it himself.";
  EXPECT_THAT(letters.fault, HasSubstr("0800-FLOWERS"));
  m_anna->FailNumber(PhoneKind::kMobile);
  EXPECT_THAT(Find(Of(7, u"Mobile")).fault, HasSubstr("cannot be read"));
}

}  // namespace
