#include "tests/contract/contacts_contract.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <set>

#include "tests/support/results.h"

namespace contract {

using platform::ContactsError;
using support::ErrorOf;
using testing::ElementsAre;
using testing::UnorderedElementsAre;

namespace {

WantedContact Named(const std::string& uid, std::u16string lastName) {
  WantedContact contact;
  contact.uid = uid;
  contact.lastName = std::move(lastName);
  contact.numbers[2] = u"555";
  return contact;
}

std::u16string LastNameOf(platform::Contact& contact) {
  const platform::ContactText name = contact.GetLastName();
  EXPECT_TRUE(name);
  return name.value_or(u"");
}

}  // namespace

void ContactsContract::Open() {
  ASSERT_TRUE(Store().Initialize());
  ASSERT_TRUE(Store().Connect());
  ASSERT_TRUE(Store().Logon());
}

std::unique_ptr<platform::Contact> ContactsContract::Item(std::int32_t index) {
  auto item = Store().GetItem(index);
  EXPECT_TRUE(item);
  return std::move(item).value_or(nullptr);
}

std::int32_t ContactsContract::OidOf(std::int32_t index) {
  const auto oid = Item(index)->GetOid();
  EXPECT_TRUE(oid);
  return oid.value_or(0);
}

std::vector<std::u16string> ContactsContract::LastNames() {
  std::vector<std::u16string> names;
  for (std::int32_t i = 1; i <= Store().GetCount(); ++i) {
    names.push_back(LastNameOf(*Item(i)));
  }
  return names;
}

std::int32_t ContactsContract::OidOfLastName(const std::u16string& name) {
  const auto names = LastNames();
  const auto found = std::find(names.begin(), names.end(), name);
  EXPECT_NE(found, names.end());
  return OidOf(static_cast<std::int32_t>(found - names.begin()) + 1);
}

TEST_P(ContactsContract, HoldsNobodyBeforeTheLogon) {
  Source().Add(Named("a", u"Lee"));
  EXPECT_EQ(Store().GetCount(), 0);
  EXPECT_FALSE(Store().GetItem(1));
  EXPECT_EQ(ErrorOf(Store().GetItemFromOid(1)), ContactsError::kFailed);
}

TEST_P(ContactsContract, CountsItemsFromOne) {
  Source().Add(Named("a", u"Lee"));
  Source().Add(Named("b", u"Ray"));
  Open();
  EXPECT_EQ(Store().GetCount(), 2);
  EXPECT_THAT(LastNames(), UnorderedElementsAre(u"Lee", u"Ray"));
  for (const std::int32_t index : {-1, 0, 3}) {
    EXPECT_FALSE(Store().GetItem(index)) << index;
  }
}

TEST_P(ContactsContract, GivesEveryPartOfAContact) {
  WantedContact wanted = {"a", u"Jörg", u"李", u"Nuñez", u"Acme, Inc.; Sons", {}};
  for (std::size_t i = 0; i < wanted.numbers.size(); ++i) {
    wanted.numbers[i] = u"+1 555-" + std::u16string(1, static_cast<char16_t>(u'0' + i));
  }
  Source().Add(wanted);
  Open();
  const auto contact = Item(1);
  EXPECT_EQ(contact->GetFirstName(), wanted.firstName);
  EXPECT_EQ(contact->GetMiddleName(), wanted.middleName);
  EXPECT_EQ(contact->GetLastName(), wanted.lastName);
  EXPECT_EQ(contact->GetCompanyName(), wanted.companyName);
  for (std::size_t i = 0; i < wanted.numbers.size(); ++i) {
    EXPECT_EQ(contact->GetNumber(static_cast<platform::PhoneKind>(i)), wanted.numbers[i]);
  }
}

TEST_P(ContactsContract, GivesAnEmptyTextForWhatAContactLacks) {
  Source().Add(Named("a", u"Lee"));
  Open();
  const auto contact = Item(1);
  for (auto getter : {&platform::Contact::GetFirstName, &platform::Contact::GetMiddleName,
                      &platform::Contact::GetCompanyName}) {
    EXPECT_EQ((contact.get()->*getter)(), u"");
  }
  EXPECT_EQ(contact->GetNumber(platform::PhoneKind::kHome), u"");
}

TEST_P(ContactsContract, FindsEachContactByANumberOfItsOwn) {
  for (int i = 0; i < 20; ++i) {
    Source().Add(Named("uid" + std::to_string(i),
                       u"N" + std::u16string(1, static_cast<char16_t>(u'a' + i))));
  }
  Open();
  std::set<std::int32_t> oids;
  for (std::int32_t i = 1; i <= Store().GetCount(); ++i) {
    const std::int32_t oid = OidOf(i);
    EXPECT_NE(oid, 0);
    oids.insert(oid);
    const auto found = Store().GetItemFromOid(oid);
    ASSERT_TRUE(found);
    EXPECT_EQ(LastNameOf(**found), LastNameOf(*Item(i)));
  }
  EXPECT_EQ(oids.size(), 20U);
}

TEST_P(ContactsContract, KeepsOrderAndNumbersOverALogoff) {
  Source().Add(Named("a", u"Ray"));
  Source().Add(Named("b", u"Lee"));
  Source().Add(Named("c", u"Ann"));
  Open();
  const auto names = LastNames();
  const std::vector<std::int32_t> oids = {OidOf(1), OidOf(2), OidOf(3)};
  EXPECT_EQ(LastNames(), names);
  Store().Logoff();
  Open();
  EXPECT_EQ(LastNames(), names);
  EXPECT_THAT(oids, ElementsAre(OidOf(1), OidOf(2), OidOf(3)));
}

TEST_P(ContactsContract, ReportsThatARemovedContactIsAbsent) {
  Source().Add(Named("a", u"Lee"));
  Source().Add(Named("b", u"Ray"));
  Open();
  const std::int32_t lee = OidOfLastName(u"Lee");
  const std::int32_t ray = OidOfLastName(u"Ray");
  Store().Logoff();
  Source().Remove("a");
  Open();
  EXPECT_EQ(ErrorOf(Store().GetItemFromOid(lee)), ContactsError::kAbsent);
  EXPECT_TRUE(Store().GetItemFromOid(ray));
}

TEST_P(ContactsContract, LeavesHandedOutContactsReadableAfterTheLogoff) {
  Source().Add(Named("a", u"Lee"));
  Open();
  const auto contact = Item(1);
  Store().Logoff();
  EXPECT_EQ(Store().GetCount(), 0);
  EXPECT_EQ(LastNameOf(*contact), u"Lee");
  Store().Logoff();
}

}  // namespace contract
