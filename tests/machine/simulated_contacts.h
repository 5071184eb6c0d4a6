#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/contacts_store.h"

namespace machine {

/// One settable contact. Each of its getters can be made to fail.
struct SimulatedContact {
  std::int32_t oid = 0;
  std::u16string firstName = {};
  std::u16string middleName = {};
  std::u16string lastName = {};
  std::u16string companyName = {};
  std::array<std::u16string, platform::kPhoneKindCount> numbers =
      {};  ///< Indexed by the code of the kind.

  bool firstNameFails = false;
  bool middleNameFails = false;
  bool lastNameFails = false;
  bool companyNameFails = false;
  bool oidFails = false;
  std::array<bool, platform::kPhoneKindCount> numberFails{};

  [[nodiscard]] std::u16string& Number(platform::PhoneKind kind) {
    return numbers[static_cast<std::size_t>(kind)];
  }
  void FailNumber(platform::PhoneKind kind) { numberFails[static_cast<std::size_t>(kind)] = true; }
};

/// Contacts that a test sets, with every failure that a real store can have.
class SimulatedContacts final : public platform::ContactsStore {
 public:
  enum class Opening : std::uint8_t { kInitialize, kConnect, kLogon };
  static constexpr int kAlways = -1;
  using Opened = platform::Result<void, platform::ContactsError>;

  // The collection, in the order of these calls. What is added counts from the next log-on.

  /// The contact, which may be changed at any time: handed-out contacts show it.
  SimulatedContact& Add(SimulatedContact contact);
  void AddNullContact();
  void AddFailingItem();

  /// Takes a contact out of the collection from the next log-on, and out of the lookup at once.
  void Remove(std::int32_t oid);

  /// Lets the next `times` calls of a step of opening fail.
  void FailOpening(Opening step, int times = kAlways) { m_failures[step] = times; }

  /// Lets GetItemFromOid fail for `oid`, instead of answering from the collection.
  void SetLookup(std::int32_t oid, platform::ContactsError error) { m_lookups[oid] = error; }

  /// Calls of a step so far.
  [[nodiscard]] int CountCalls(Opening step) const;
  [[nodiscard]] bool IsLoggedOn() const { return m_isLoggedOn; }

  [[nodiscard]] Opened Initialize() override { return Open(Opening::kInitialize); }
  [[nodiscard]] Opened Connect() override { return Open(Opening::kConnect); }
  [[nodiscard]] Opened Logon() override;
  [[nodiscard]] std::int32_t GetCount() override;
  [[nodiscard]] platform::FoundContact GetItem(std::int32_t index) override;
  [[nodiscard]] platform::FoundContact GetItemFromOid(std::int32_t oid) override;
  void Logoff() override;

 private:
  struct Item {
    bool fails = false;
    std::shared_ptr<SimulatedContact> contact;
  };

  [[nodiscard]] Opened Open(Opening step);

  std::vector<Item> m_settings;
  std::vector<Item> m_items;  ///< Of this log-on.
  bool m_isLoggedOn = false;
  std::map<Opening, int> m_failures;
  std::map<Opening, int> m_calls;
  std::map<std::int32_t, platform::ContactsError> m_lookups;
};

}  // namespace machine
