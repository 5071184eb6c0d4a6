#include "tests/support/failing_registry.h"

#include <memory>
#include <utility>

namespace support {

using platform::Failure;
using platform::OpenedKey;
using platform::RegistryError;
using platform::RegistryType;
using platform::RegistryValue;
using platform::Result;

class FailingRegistry::Key final : public platform::RegistryKey {
 public:
  Key(FailingRegistry& registry, std::unique_ptr<platform::RegistryKey> key)
      : m_registry(registry), m_key(std::move(key)) {}

  using ItemName = Result<std::optional<std::u16string>, RegistryError>;

  ItemName EnumerateSubkey(std::uint32_t index) override {
    return m_registry.CountCall().and_then([&] { return m_key->EnumerateSubkey(index); });
  }

  ItemName EnumerateValue(std::uint32_t index) override {
    return m_registry.CountCall().and_then([&] { return m_key->EnumerateValue(index); });
  }

  Result<RegistryValue, RegistryError> Query(std::u16string_view valueName) override {
    return m_registry.CountCall().and_then([&] { return m_key->Query(valueName); });
  }

  Result<void, RegistryError> Set(std::u16string_view valueName, RegistryType type,
                                  std::span<const std::byte> bytes) override {
    return m_registry.CountCall().and_then([&] { return m_key->Set(valueName, type, bytes); });
  }

  Result<void, RegistryError> DeleteValue(std::u16string_view valueName) override {
    return m_registry.CountCall().and_then([&] { return m_key->DeleteValue(valueName); });
  }

 private:
  FailingRegistry& m_registry;
  std::unique_ptr<platform::RegistryKey> m_key;
};

void FailingRegistry::FailCall(std::size_t number, Failing failing, RegistryError error) {
  m_calls = 0;
  m_failingCall = number;
  m_failing = failing;
  m_error = error;
  m_hasFailed = false;
}

OpenedKey FailingRegistry::OpenKey(std::u16string_view path) {
  if (const auto counted = CountCall(); !counted) {
    return Failure(counted.error());
  }
  return Wrap(m_registry.OpenKey(path));
}

OpenedKey FailingRegistry::CreateKey(std::u16string_view path) {
  if (const auto counted = CountCall(); !counted) {
    return Failure(counted.error());
  }
  return Wrap(m_registry.CreateKey(path));
}

Result<void, RegistryError> FailingRegistry::DeleteKey(std::u16string_view path) {
  return CountCall().and_then([&] { return m_registry.DeleteKey(path); });
}

Result<void, RegistryError> FailingRegistry::BeginGroup() {
  const auto begun = CountCall().and_then([this] { return m_registry.BeginGroup(); });
  m_groupIsOpen = m_groupIsOpen || begun;
  return begun;
}

Result<void, RegistryError> FailingRegistry::CommitGroup() {
  const auto counted = CountCall();
  if (counted) {
    m_groupIsOpen = false;
    return m_registry.CommitGroup();
  }
  CancelGroup();
  return counted;
}

void FailingRegistry::CancelGroup() {
  m_groupIsOpen = false;
  m_doom.reset();
  m_registry.CancelGroup();
}

Result<void, RegistryError> FailingRegistry::CountCall() {
  ++m_calls;
  if (m_doom) {
    return Failure(*m_doom);
  }
  const bool isLater = m_calls > m_failingCall && m_failing != Failing::kOnce;
  if (m_failingCall == 0 || !(m_calls == m_failingCall || isLater)) {
    return {};
  }
  m_hasFailed = true;
  if (m_groupIsOpen && platform::DoomsGroup(m_error)) {
    m_doom = m_error;
  }
  return Failure(m_error);
}

OpenedKey FailingRegistry::Wrap(OpenedKey opened) {
  if (!opened) {
    return opened;
  }
  return std::make_unique<Key>(*this, std::move(*opened));
}

}  // namespace support
