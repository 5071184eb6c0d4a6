#include "tests/support/failing_contacts.h"

#include <memory>
#include <string>
#include <utility>

namespace support {
namespace {

class FailingContact final : public platform::Contact {
 public:
  FailingContact(FaultPlan& plan, std::unique_ptr<platform::Contact> contact)
      : m_plan(plan), m_contact(std::move(contact)) {}

  bool GetFirstName(std::u16string& text) override {
    return !m_plan.NextFails() && m_contact->GetFirstName(text);
  }
  bool GetMiddleName(std::u16string& text) override {
    return !m_plan.NextFails() && m_contact->GetMiddleName(text);
  }
  bool GetLastName(std::u16string& text) override {
    return !m_plan.NextFails() && m_contact->GetLastName(text);
  }
  bool GetCompanyName(std::u16string& text) override {
    return !m_plan.NextFails() && m_contact->GetCompanyName(text);
  }
  bool GetNumber(platform::PhoneKind kind, std::u16string& text) override {
    return !m_plan.NextFails() && m_contact->GetNumber(kind, text);
  }
  bool GetOid(std::int32_t& oid) override { return !m_plan.NextFails() && m_contact->GetOid(oid); }

 private:
  FaultPlan& m_plan;
  const std::unique_ptr<platform::Contact> m_contact;
};

}  // namespace

bool FailingContacts::Initialize() { return !m_plan.NextFails() && m_contacts.Initialize(); }

bool FailingContacts::Connect() { return !m_plan.NextFails() && m_contacts.Connect(); }

bool FailingContacts::Logon() { return !m_plan.NextFails() && m_contacts.Logon(); }

std::int32_t FailingContacts::GetCount() { return m_plan.NextFails() ? 0 : m_contacts.GetCount(); }

platform::ContactItem FailingContacts::GetItem(std::int32_t index) {
  if (m_plan.NextFails()) {
    return {};
  }
  platform::ContactItem item = m_contacts.GetItem(index);
  if (item.contact) {
    item.contact = std::make_unique<FailingContact>(m_plan, std::move(item.contact));
  }
  return item;
}

platform::ContactLookup FailingContacts::GetItemFromOid(
    std::int32_t oid, std::unique_ptr<platform::Contact>& contact) {
  if (m_plan.NextFails()) {
    return platform::ContactLookup::kFailed;
  }
  const auto lookup = m_contacts.GetItemFromOid(oid, contact);
  if (lookup == platform::ContactLookup::kFound) {
    contact = std::make_unique<FailingContact>(m_plan, std::move(contact));
  }
  return lookup;
}

void FailingContacts::Logoff() { m_contacts.Logoff(); }

}  // namespace support
