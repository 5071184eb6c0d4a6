#pragma once

#include <string_view>

#include "platform/registry.h"

namespace support {

/// Forwards every call to another registry. A test overrides what it watches or changes.
class ForwardingRegistry : public platform::Registry {
 public:
  explicit ForwardingRegistry(platform::Registry& inner) : m_inner(inner) {}

  [[nodiscard]] platform::OpenedKey OpenKey(std::u16string_view path) override {
    return m_inner.OpenKey(path);
  }
  [[nodiscard]] platform::OpenedKey CreateKey(std::u16string_view path) override {
    return m_inner.CreateKey(path);
  }
  [[nodiscard]] platform::Result<void, platform::RegistryError> DeleteKey(
      std::u16string_view path) override {
    return m_inner.DeleteKey(path);
  }
  [[nodiscard]] platform::Result<void, platform::RegistryError> BeginGroup() override {
    return m_inner.BeginGroup();
  }
  [[nodiscard]] platform::Result<void, platform::RegistryError> CommitGroup() override {
    return m_inner.CommitGroup();
  }
  void CancelGroup() override { m_inner.CancelGroup(); }

 private:
  platform::Registry& m_inner;
};

}  // namespace support
