#pragma once

#include "platform/contacts_store.h"
#include "tests/support/fault_plan.h"

namespace support {

/// Forwards every call to other contacts and lets the n-th one fail. Calls of the store and of the
/// contacts it hands out are counted together, Logoff not at all. A failed GetCount gives 0, a
/// failed look-up cannot tell whether the contact exists.
class FailingContacts final : public platform::ContactsStore {
 public:
  FailingContacts(platform::ContactsStore& contacts, FaultPlan& plan)
      : m_contacts(contacts), m_plan(plan) {}

  [[nodiscard]] bool Initialize() override;
  [[nodiscard]] bool Connect() override;
  [[nodiscard]] bool Logon() override;
  [[nodiscard]] std::int32_t GetCount() override;
  [[nodiscard]] platform::ContactItem GetItem(std::int32_t index) override;
  [[nodiscard]] platform::ContactLookup GetItemFromOid(
      std::int32_t oid, std::unique_ptr<platform::Contact>& contact) override;
  void Logoff() override;

 private:
  platform::ContactsStore& m_contacts;
  FaultPlan& m_plan;
};

}  // namespace support
