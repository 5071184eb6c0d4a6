#include "tests/machine/simulated_contacts.h"

#include <algorithm>
#include <utility>

namespace machine {

using platform::ContactsError;
using platform::Failure;

namespace {

class LiveContact final : public platform::Contact {
 public:
  explicit LiveContact(std::shared_ptr<const SimulatedContact> contact)
      : m_contact(std::move(contact)) {}

  [[nodiscard]] platform::ContactText GetFirstName() override {
    return Give(m_contact->firstName, m_contact->firstNameFails);
  }
  [[nodiscard]] platform::ContactText GetMiddleName() override {
    return Give(m_contact->middleName, m_contact->middleNameFails);
  }
  [[nodiscard]] platform::ContactText GetLastName() override {
    return Give(m_contact->lastName, m_contact->lastNameFails);
  }
  [[nodiscard]] platform::ContactText GetCompanyName() override {
    return Give(m_contact->companyName, m_contact->companyNameFails);
  }
  [[nodiscard]] platform::ContactText GetNumber(platform::PhoneKind kind) override {
    const auto code = static_cast<std::size_t>(kind);
    return Give(m_contact->numbers[code], m_contact->numberFails[code]);
  }
  [[nodiscard]] platform::Result<std::int32_t, ContactsError> GetOid() override {
    return Give(m_contact->oid, m_contact->oidFails);
  }

 private:
  template <typename T>
  [[nodiscard]] static platform::Result<T, ContactsError> Give(const T& value, bool fails) {
    if (fails) {
      return Failure(ContactsError::kFailed);
    }
    return value;
  }

  std::shared_ptr<const SimulatedContact> m_contact;
};

}  // namespace

SimulatedContact& SimulatedContacts::Add(SimulatedContact contact) {
  m_settings.push_back({false, std::make_shared<SimulatedContact>(std::move(contact))});
  return *m_settings.back().contact;
}

void SimulatedContacts::AddNullContact() { m_settings.push_back({false, nullptr}); }

void SimulatedContacts::AddFailingItem() { m_settings.push_back({true, nullptr}); }

void SimulatedContacts::Remove(std::int32_t oid) {
  std::erase_if(m_settings,
                [oid](const Item& item) { return item.contact && item.contact->oid == oid; });
  m_lookups[oid] = ContactsError::kAbsent;
}

int SimulatedContacts::CountCalls(Opening step) const {
  const auto calls = m_calls.find(step);
  return calls == m_calls.end() ? 0 : calls->second;
}

SimulatedContacts::Opened SimulatedContacts::Logon() {
  Logoff();
  const Opened opened = Open(Opening::kLogon);
  if (opened) {
    m_items = m_settings;
    m_isLoggedOn = true;
  }
  return opened;
}

std::int32_t SimulatedContacts::GetCount() { return static_cast<std::int32_t>(m_items.size()); }

platform::FoundContact SimulatedContacts::GetItem(std::int32_t index) {
  if (index < 1 || index > GetCount()) {
    return Failure(ContactsError::kFailed);
  }
  const Item& item = m_items[static_cast<std::size_t>(index) - 1];
  if (item.fails) {
    return Failure(ContactsError::kFailed);
  }
  return item.contact ? std::make_unique<LiveContact>(item.contact) : nullptr;
}

platform::FoundContact SimulatedContacts::GetItemFromOid(std::int32_t oid) {
  if (!m_isLoggedOn) {
    return Failure(ContactsError::kFailed);
  }
  if (const auto set = m_lookups.find(oid); set != m_lookups.end()) {
    return Failure(set->second);
  }
  const auto item = std::find_if(m_items.begin(), m_items.end(), [oid](const Item& each) {
    return each.contact && each.contact->oid == oid;
  });
  if (item == m_items.end()) {
    return Failure(ContactsError::kAbsent);
  }
  return std::make_unique<LiveContact>(item->contact);
}

void SimulatedContacts::Logoff() {
  m_items.clear();
  m_isLoggedOn = false;
}

SimulatedContacts::Opened SimulatedContacts::Open(Opening step) {
  ++m_calls[step];
  int& failures = m_failures[step];
  if (failures == 0) {
    return {};
  }
  failures -= failures > 0 ? 1 : 0;
  return Failure(ContactsError::kFailed);
}

}  // namespace machine
