#include "tests/machine/simulated_contacts.h"

#include <algorithm>
#include <utility>

namespace machine {

using platform::ContactLookup;

namespace {

class LiveContact final : public platform::Contact {
 public:
  explicit LiveContact(std::shared_ptr<const SimulatedContact> contact)
      : m_contact(std::move(contact)) {}

  [[nodiscard]] bool GetFirstName(std::u16string& text) override {
    return Give(m_contact->firstName, m_contact->firstNameFails, text);
  }
  [[nodiscard]] bool GetMiddleName(std::u16string& text) override {
    return Give(m_contact->middleName, m_contact->middleNameFails, text);
  }
  [[nodiscard]] bool GetLastName(std::u16string& text) override {
    return Give(m_contact->lastName, m_contact->lastNameFails, text);
  }
  [[nodiscard]] bool GetCompanyName(std::u16string& text) override {
    return Give(m_contact->companyName, m_contact->companyNameFails, text);
  }
  [[nodiscard]] bool GetNumber(platform::PhoneKind kind, std::u16string& text) override {
    const auto code = static_cast<std::size_t>(kind);
    return Give(m_contact->numbers[code], m_contact->numberFails[code], text);
  }
  [[nodiscard]] bool GetOid(std::int32_t& oid) override {
    return Give(m_contact->oid, m_contact->oidFails, oid);
  }

 private:
  template <typename T>
  [[nodiscard]] static bool Give(const T& value, bool fails, T& to) {
    if (!fails) {
      to = value;
    }
    return !fails;
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
  m_lookups[oid] = ContactLookup::kAbsent;
}

int SimulatedContacts::CountCalls(Opening step) const {
  const auto calls = m_calls.find(step);
  return calls == m_calls.end() ? 0 : calls->second;
}

bool SimulatedContacts::Logon() {
  Logoff();
  if (!Succeeds(Opening::kLogon)) {
    return false;
  }
  m_items = m_settings;
  m_isLoggedOn = true;
  return true;
}

std::int32_t SimulatedContacts::GetCount() { return static_cast<std::int32_t>(m_items.size()); }

platform::ContactItem SimulatedContacts::GetItem(std::int32_t index) {
  if (index < 1 || index > GetCount()) {
    return {};
  }
  const Item& item = m_items[static_cast<std::size_t>(index) - 1];
  return {!item.fails, item.contact ? std::make_unique<LiveContact>(item.contact) : nullptr};
}

ContactLookup SimulatedContacts::GetItemFromOid(std::int32_t oid,
                                                std::unique_ptr<platform::Contact>& contact) {
  if (!m_isLoggedOn) {
    return ContactLookup::kFailed;
  }
  const auto item = std::find_if(m_items.begin(), m_items.end(), [oid](const Item& each) {
    return each.contact && each.contact->oid == oid;
  });
  const auto set = m_lookups.find(oid);
  const ContactLookup lookup = set != m_lookups.end()  ? set->second
                               : item != m_items.end() ? ContactLookup::kFound
                                                       : ContactLookup::kAbsent;
  if (lookup != ContactLookup::kFound) {
    return lookup;
  }
  if (item == m_items.end()) {
    return ContactLookup::kAbsent;
  }
  contact = std::make_unique<LiveContact>(item->contact);
  return ContactLookup::kFound;
}

void SimulatedContacts::Logoff() {
  m_items.clear();
  m_isLoggedOn = false;
}

bool SimulatedContacts::Succeeds(Opening step) {
  ++m_calls[step];
  int& failures = m_failures[step];
  if (failures == 0) {
    return true;
  }
  failures -= failures > 0 ? 1 : 0;
  return false;
}

}  // namespace machine
