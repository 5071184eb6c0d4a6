#pragma once

#include "platform/clock.h"
#include "platform/contacts_store.h"

namespace cli {

/// The user's contacts for a page that can do without them: if they cannot be read the log-on
/// succeeds all the same. Then there are no contacts. Each look-up fails instead of reporting a
/// missing contact, so no tag counts as stale.
class ContactsIfReadable final : public platform::ContactsStore {
 public:
  ContactsIfReadable(platform::ContactsStore& contacts, platform::Clock& clock)
      : m_contacts(contacts), m_clock(clock) {}

  /// Whether the latest log-on read the contacts.
  [[nodiscard]] bool AreRead() const { return m_areRead; }

  // All of it happens at the log-on, so that each step may fail.
  [[nodiscard]] bool Initialize() override { return true; }
  [[nodiscard]] bool Connect() override { return true; }
  [[nodiscard]] bool Logon() override;

  [[nodiscard]] std::int32_t GetCount() override;
  [[nodiscard]] platform::ContactItem GetItem(std::int32_t index) override;
  [[nodiscard]] platform::ContactLookup GetItemFromOid(
      std::int32_t oid, std::unique_ptr<platform::Contact>& contact) override;
  void Logoff() override;

 private:
  platform::ContactsStore& m_contacts;
  platform::Clock& m_clock;
  bool m_areRead = false;
};

}  // namespace cli
