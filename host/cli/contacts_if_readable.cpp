#include "host/cli/contacts_if_readable.h"

#include "tags/contact_opening.h"

namespace cli {

bool ContactsIfReadable::Logon() {
  m_areRead = !tags::OpenContacts(m_contacts, m_clock);
  return true;
}

std::int32_t ContactsIfReadable::GetCount() { return m_areRead ? m_contacts.GetCount() : 0; }

platform::ContactItem ContactsIfReadable::GetItem(std::int32_t index) {
  return m_areRead ? m_contacts.GetItem(index) : platform::ContactItem{};
}

platform::ContactLookup ContactsIfReadable::GetItemFromOid(
    std::int32_t oid, std::unique_ptr<platform::Contact>& contact) {
  return m_areRead ? m_contacts.GetItemFromOid(oid, contact) : platform::ContactLookup::kFailed;
}

void ContactsIfReadable::Logoff() {
  m_areRead = false;
  m_contacts.Logoff();
}

}  // namespace cli
