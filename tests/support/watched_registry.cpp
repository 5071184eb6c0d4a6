#include "tests/support/watched_registry.h"

#include <memory>
#include <utility>

namespace support {

using platform::Failure;
using platform::OpenedKey;
using platform::RegistryError;
using platform::RegistryType;
using platform::RegistryValue;
using platform::Result;

class WatchedRegistry::Key final : public platform::RegistryKey {
 public:
  Key(WatchedRegistry& registry, std::unique_ptr<platform::RegistryKey> key)
      : m_registry(registry), m_key(std::move(key)) {}

  using ItemName = Result<std::optional<std::u16string>, RegistryError>;

  ItemName EnumerateSubkey(std::uint32_t index) override {
    return m_registry.Count().and_then([&] { return m_key->EnumerateSubkey(index); });
  }

  ItemName EnumerateValue(std::uint32_t index) override {
    return m_registry.Count().and_then([&] { return m_key->EnumerateValue(index); });
  }

  Result<RegistryValue, RegistryError> Query(std::u16string_view valueName) override {
    return m_registry.Count().and_then([&] { return m_key->Query(valueName); });
  }

  Result<void, RegistryError> Set(std::u16string_view valueName, RegistryType type,
                                  std::span<const std::byte> bytes) override {
    return m_registry.CountWrite().and_then([&] { return m_key->Set(valueName, type, bytes); });
  }

  Result<void, RegistryError> DeleteValue(std::u16string_view valueName) override {
    return m_registry.CountWrite().and_then([&] { return m_key->DeleteValue(valueName); });
  }

 private:
  WatchedRegistry& m_registry;
  std::unique_ptr<platform::RegistryKey> m_key;
};

OpenedKey WatchedRegistry::OpenKey(std::u16string_view path) {
  if (const auto counted = Count(); !counted) {
    return Failure(counted.error());
  }
  return Wrap(m_inner.OpenKey(path));
}

OpenedKey WatchedRegistry::CreateKey(std::u16string_view path) {
  if (const auto counted = Count(); !counted) {
    return Failure(counted.error());
  }
  if (!m_refusal) {
    return Wrap(m_inner.CreateKey(path));
  }
  // A store that takes no writes still opens the keys it has.
  OpenedKey opened = m_inner.OpenKey(path);
  if (!opened) {
    ++m_refusals;
    return Failure(*m_refusal);
  }
  return Wrap(std::move(opened));
}

Result<void, RegistryError> WatchedRegistry::DeleteKey(std::u16string_view path) {
  return CountWrite().and_then([&] { return m_inner.DeleteKey(path); });
}

Result<void, RegistryError> WatchedRegistry::BeginGroup() {
  const auto begun = Count().and_then([this] { return m_inner.BeginGroup(); });
  m_groupIsOpen = m_groupIsOpen || begun;
  return begun;
}

Result<void, RegistryError> WatchedRegistry::CommitGroup() {
  const auto counted = Count();
  if (counted) {
    m_groupIsOpen = false;
    return m_inner.CommitGroup();
  }
  WatchedRegistry::CancelGroup();
  return counted;
}

void WatchedRegistry::CancelGroup() {
  m_groupIsOpen = false;
  m_doom.reset();
  m_inner.CancelGroup();
}

Result<void, RegistryError> WatchedRegistry::Count() {
  const bool fails = m_plan.NextFails();
  if (m_doom) {
    return Failure(*m_doom);
  }
  if (!fails) {
    return {};
  }
  if (m_groupIsOpen && platform::DoomsGroup(m_error)) {
    m_doom = m_error;
  }
  return Failure(m_error);
}

Result<void, RegistryError> WatchedRegistry::CountWrite() {
  const auto counted = Count();
  if (!counted || !m_refusal) {
    return counted;
  }
  ++m_refusals;
  return Failure(*m_refusal);
}

OpenedKey WatchedRegistry::Wrap(OpenedKey opened) {
  if (opened) {
    opened = std::make_unique<Key>(*this, std::move(*opened));
  }
  return opened;
}

}  // namespace support
