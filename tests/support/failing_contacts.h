#pragma once

#include "platform/contacts_store.h"
#include "tests/support/fault_plan.h"

namespace support {

/// Forwards every call to other contacts and lets the n-th one fail. Calls of the store and of the
/// contacts it hands out are counted together, Logoff not at all. A failed GetCount gives 0, and
/// after a failed look-up nobody knows whether the contact exists.
class FailingContacts final : public platform::ContactsStore {
 public:
  using Opened = platform::Result<void, platform::ContactsError>;

  FailingContacts(platform::ContactsStore& contacts, FaultPlan& plan)
      : m_contacts(contacts), m_plan(plan) {}

  [[nodiscard]] Opened Initialize() override;
  [[nodiscard]] Opened Connect() override;
  [[nodiscard]] Opened Logon() override;
  [[nodiscard]] std::int32_t GetCount() override;
  [[nodiscard]] platform::FoundContact GetItem(std::int32_t index) override;
  [[nodiscard]] platform::FoundContact GetItemFromOid(std::int32_t oid) override;
  void Logoff() override;

 private:
  platform::ContactsStore& m_contacts;
  FaultPlan& m_plan;
};

}  // namespace support
