#pragma once

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "platform/contacts_store.h"

namespace contract {

/// One contact as a suite wants it. The number of kind k is numbers[k].
struct WantedContact {
  std::string uid;
  std::u16string firstName;
  std::u16string middleName;
  std::u16string lastName;
  std::u16string companyName;
  std::array<std::u16string, platform::kPhoneKindCount> numbers;
};

/// A store over a source of its own, which is empty at first.
class ContactsFixture {
 public:
  ContactsFixture() = default;
  ContactsFixture(const ContactsFixture&) = delete;
  ContactsFixture& operator=(const ContactsFixture&) = delete;
  virtual ~ContactsFixture() = default;

  /// Both count from the next log-on.
  virtual void Add(const WantedContact& contact) = 0;
  virtual void Remove(const std::string& uid) = 0;

  [[nodiscard]] virtual platform::ContactsStore& Get() = 0;
};

struct ContactsBackEnd {
  std::string name;
  std::function<std::unique_ptr<ContactsFixture>()> make;
};

inline void PrintTo(const ContactsBackEnd& backEnd, std::ostream* stream) {
  *stream << backEnd.name;
}

/// The suite that every store of contacts is put through.
class ContactsContract : public testing::TestWithParam<ContactsBackEnd> {
 protected:
  void SetUp() override { m_fixture = GetParam().make(); }

  [[nodiscard]] ContactsFixture& Source() { return *m_fixture; }
  [[nodiscard]] platform::ContactsStore& Store() { return m_fixture->Get(); }

  void Open();
  [[nodiscard]] std::unique_ptr<platform::Contact> Item(std::int32_t index);
  [[nodiscard]] std::int32_t OidOf(std::int32_t index);
  /// The last name of each contact in order.
  [[nodiscard]] std::vector<std::u16string> LastNames();
  [[nodiscard]] std::int32_t OidOfLastName(const std::u16string& name);

 private:
  std::unique_ptr<ContactsFixture> m_fixture;
};

[[nodiscard]] inline std::string NameOf(const testing::TestParamInfo<ContactsBackEnd>& info) {
  return info.param.name;
}

}  // namespace contract
