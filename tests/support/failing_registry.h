#pragma once

#include <cstdint>
#include <optional>

#include "platform/registry.h"

namespace support {

/// Forwards every call to another registry, keys included, and lets one of them fail, once or from
/// then on. A failing call does not reach the other registry; within a group it dooms the group, as
/// the contract says. Used by one thread.
class FailingRegistry final : public platform::Registry {
 public:
  enum class Repeat : std::uint8_t { kOnce, kForGood };

  explicit FailingRegistry(platform::Registry& registry) : m_registry(registry) {}

  /// Lets the `call`-th call from now on (1 is the next one) fail with `error`.
  void FailCall(std::uint32_t call, platform::RegistryError error, Repeat repeat = Repeat::kOnce);

  /// How many calls have been made so far, those that failed included.
  [[nodiscard]] std::uint32_t CallCount() const { return m_calls; }

  [[nodiscard]] platform::OpenedKey OpenKey(std::u16string_view path) override;
  [[nodiscard]] platform::OpenedKey CreateKey(std::u16string_view path) override;
  [[nodiscard]] platform::RegistryError DeleteKey(std::u16string_view path) override;
  [[nodiscard]] platform::RegistryError BeginGroup() override;
  [[nodiscard]] platform::RegistryError CommitGroup() override;
  void CancelGroup() override;

 private:
  class Key;

  /// Counts one call; what it shall fail with, or kNone.
  [[nodiscard]] platform::RegistryError Count();
  [[nodiscard]] platform::OpenedKey Wrap(platform::OpenedKey opened);

  platform::Registry& m_registry;
  std::uint32_t m_calls = 0;
  std::uint32_t m_failingCall = 0;
  platform::RegistryError m_error = platform::RegistryError::kNone;
  Repeat m_repeat = Repeat::kOnce;
  bool m_groupIsOpen = false;
  platform::RegistryError m_doom = platform::RegistryError::kNone;
};

}  // namespace support
