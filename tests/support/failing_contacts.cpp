#include "tests/support/failing_contacts.h"

#include <memory>
#include <utility>

namespace support {

using platform::ContactsError;
using platform::ContactText;
using platform::Failure;
using platform::FoundContact;

namespace {

class FailingContact final : public platform::Contact {
 public:
  FailingContact(FaultPlan& plan, std::unique_ptr<platform::Contact> contact)
      : m_plan(plan), m_contact(std::move(contact)) {}

  ContactText GetFirstName() override {
    return m_plan.NextFails() ? kFailed : m_contact->GetFirstName();
  }
  ContactText GetMiddleName() override {
    return m_plan.NextFails() ? kFailed : m_contact->GetMiddleName();
  }
  ContactText GetLastName() override {
    return m_plan.NextFails() ? kFailed : m_contact->GetLastName();
  }
  ContactText GetCompanyName() override {
    return m_plan.NextFails() ? kFailed : m_contact->GetCompanyName();
  }
  ContactText GetNumber(platform::PhoneKind kind) override {
    return m_plan.NextFails() ? kFailed : m_contact->GetNumber(kind);
  }
  platform::Result<std::int32_t, ContactsError> GetOid() override {
    return m_plan.NextFails() ? kFailed : m_contact->GetOid();
  }

 private:
  static constexpr auto kFailed = Failure(ContactsError::kFailed);

  FaultPlan& m_plan;
  const std::unique_ptr<platform::Contact> m_contact;
};

FoundContact WithFaults(FoundContact found, FaultPlan& plan) {
  if (found && *found) {
    *found = std::make_unique<FailingContact>(plan, std::move(*found));
  }
  return found;
}

}  // namespace

FailingContacts::Opened FailingContacts::Initialize() {
  return m_plan.NextFails() ? Failure(ContactsError::kFailed) : m_contacts.Initialize();
}

FailingContacts::Opened FailingContacts::Connect() {
  return m_plan.NextFails() ? Failure(ContactsError::kFailed) : m_contacts.Connect();
}

FailingContacts::Opened FailingContacts::Logon() {
  return m_plan.NextFails() ? Failure(ContactsError::kFailed) : m_contacts.Logon();
}

std::int32_t FailingContacts::GetCount() { return m_plan.NextFails() ? 0 : m_contacts.GetCount(); }

FoundContact FailingContacts::GetItem(std::int32_t index) {
  return m_plan.NextFails() ? Failure(ContactsError::kFailed)
                            : WithFaults(m_contacts.GetItem(index), m_plan);
}

FoundContact FailingContacts::GetItemFromOid(std::int32_t oid) {
  return m_plan.NextFails() ? Failure(ContactsError::kFailed)
                            : WithFaults(m_contacts.GetItemFromOid(oid), m_plan);
}

void FailingContacts::Logoff() { m_contacts.Logoff(); }

}  // namespace support
