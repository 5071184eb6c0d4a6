#pragma once

#include <cstddef>
#include <memory>
#include <utility>

#include "platform/registry.h"

namespace support {

/// Another registry on a medium that takes no writes, or has no room left. Counts the attempts.
class ReadOnlyRegistry final : public platform::Registry {
 public:
  explicit ReadOnlyRegistry(platform::Registry& registry,
                            platform::RegistryError refusal = platform::RegistryError::kReadOnly)
      : m_registry(registry), m_refusal(refusal) {}

  [[nodiscard]] std::size_t CountWrites() const { return m_writes; }

  [[nodiscard]] platform::OpenedKey OpenKey(std::u16string_view path) override {
    platform::OpenedKey opened = m_registry.OpenKey(path);
    if (!opened) {
      return opened;
    }
    return std::make_unique<Key>(*this, std::move(*opened));
  }
  [[nodiscard]] platform::OpenedKey CreateKey(std::u16string_view path) override {
    platform::OpenedKey opened = OpenKey(path);
    if (!opened) {
      return platform::Failure(Refuse());
    }
    return opened;
  }
  [[nodiscard]] platform::Result<void, platform::RegistryError> DeleteKey(
      std::u16string_view /*path*/) override {
    return platform::Failure(Refuse());
  }
  [[nodiscard]] platform::Result<void, platform::RegistryError> BeginGroup() override {
    return m_registry.BeginGroup();
  }
  [[nodiscard]] platform::Result<void, platform::RegistryError> CommitGroup() override {
    return m_registry.CommitGroup();
  }
  void CancelGroup() override { m_registry.CancelGroup(); }

 private:
  class Key final : public platform::RegistryKey {
   public:
    Key(ReadOnlyRegistry& registry, std::unique_ptr<platform::RegistryKey> key)
        : m_registry(registry), m_key(std::move(key)) {}

    platform::Result<std::optional<std::u16string>, platform::RegistryError> EnumerateSubkey(
        std::uint32_t index) override {
      return m_key->EnumerateSubkey(index);
    }
    platform::Result<std::optional<std::u16string>, platform::RegistryError> EnumerateValue(
        std::uint32_t index) override {
      return m_key->EnumerateValue(index);
    }
    platform::Result<platform::RegistryValue, platform::RegistryError> Query(
        std::u16string_view valueName) override {
      return m_key->Query(valueName);
    }
    platform::Result<void, platform::RegistryError> Set(
        std::u16string_view /*name*/, platform::RegistryType /*type*/,
        std::span<const std::byte> /*bytes*/) override {
      return platform::Failure(m_registry.Refuse());
    }
    platform::Result<void, platform::RegistryError> DeleteValue(
        std::u16string_view /*valueName*/) override {
      return platform::Failure(m_registry.Refuse());
    }

   private:
    ReadOnlyRegistry& m_registry;
    std::unique_ptr<platform::RegistryKey> m_key;
  };

  platform::RegistryError Refuse() {
    ++m_writes;
    return m_refusal;
  }

  platform::Registry& m_registry;
  const platform::RegistryError m_refusal;
  std::size_t m_writes = 0;
};

}  // namespace support
