#include "tests/support/failing_registry.h"

#include <memory>
#include <utility>

#include "platform/registry_gate.h"

namespace support {

using platform::OpenedKey;
using platform::RegistryError;
using platform::RegistryType;
using platform::RegistryValue;

class FailingRegistry::Key final : public platform::RegistryKey {
 public:
  Key(FailingRegistry& registry, std::unique_ptr<platform::RegistryKey> key)
      : m_registry(registry), m_key(std::move(key)) {}

  RegistryError EnumerateSubkey(std::uint32_t index, std::u16string& name) override {
    const RegistryError error = m_registry.CountCall();
    return error == RegistryError::kNone ? m_key->EnumerateSubkey(index, name) : error;
  }

  RegistryError EnumerateValue(std::uint32_t index, std::u16string& name) override {
    const RegistryError error = m_registry.CountCall();
    return error == RegistryError::kNone ? m_key->EnumerateValue(index, name) : error;
  }

  RegistryError Query(std::u16string_view valueName, RegistryValue& value) override {
    const RegistryError error = m_registry.CountCall();
    return error == RegistryError::kNone ? m_key->Query(valueName, value) : error;
  }

  RegistryError Set(std::u16string_view valueName, RegistryType type,
                    std::span<const std::byte> bytes) override {
    const RegistryError error = m_registry.CountCall();
    return error == RegistryError::kNone ? m_key->Set(valueName, type, bytes) : error;
  }

  RegistryError DeleteValue(std::u16string_view valueName) override {
    const RegistryError error = m_registry.CountCall();
    return error == RegistryError::kNone ? m_key->DeleteValue(valueName) : error;
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
  if (const RegistryError error = CountCall(); error != RegistryError::kNone) {
    return {nullptr, error};
  }
  return Wrap(m_registry.OpenKey(path));
}

OpenedKey FailingRegistry::CreateKey(std::u16string_view path) {
  if (const RegistryError error = CountCall(); error != RegistryError::kNone) {
    return {nullptr, error};
  }
  return Wrap(m_registry.CreateKey(path));
}

RegistryError FailingRegistry::DeleteKey(std::u16string_view path) {
  const RegistryError error = CountCall();
  return error == RegistryError::kNone ? m_registry.DeleteKey(path) : error;
}

RegistryError FailingRegistry::BeginGroup() {
  RegistryError error = CountCall();
  if (error == RegistryError::kNone) {
    error = m_registry.BeginGroup();
  }
  if (error == RegistryError::kNone) {
    m_groupIsOpen = true;
  }
  return error;
}

RegistryError FailingRegistry::CommitGroup() {
  const RegistryError error = CountCall();
  if (error == RegistryError::kNone) {
    m_groupIsOpen = false;
    return m_registry.CommitGroup();
  }
  CancelGroup();
  return error;
}

void FailingRegistry::CancelGroup() {
  m_groupIsOpen = false;
  m_doom = RegistryError::kNone;
  m_registry.CancelGroup();
}

RegistryError FailingRegistry::CountCall() {
  ++m_calls;
  if (m_doom != RegistryError::kNone) {
    return m_doom;
  }
  const bool isLater = m_calls > m_failingCall && m_failing != Failing::kOnce;
  if (m_failingCall == 0 || !(m_calls == m_failingCall || isLater)) {
    return RegistryError::kNone;
  }
  m_hasFailed = true;
  if (m_groupIsOpen && platform::DoomsGroup(m_error)) {
    m_doom = m_error;
  }
  return m_error;
}

OpenedKey FailingRegistry::Wrap(OpenedKey opened) {
  if (opened.key) {
    opened.key = std::make_unique<Key>(*this, std::move(opened.key));
  }
  return opened;
}

}  // namespace support
