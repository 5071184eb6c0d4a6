#pragma once

#include <cstddef>
#include <optional>

#include "platform/registry.h"
#include "tests/support/failing_file_system.h"

namespace support {

/// Forwards every call to another registry and lets the n-th one fail. Calls of the registry and of
/// its keys are counted together, CancelGroup not at all. A failed call does nothing but that it
/// dooms the group it is in, as the contract says. Used by one thread. Tests let call 1, 2, ...
/// fail until a run ends without a failure.
class FailingRegistry final : public platform::Registry {
 public:
  explicit FailingRegistry(platform::Registry& registry) : m_registry(registry) {}

  /// Lets call `number` (from 1, counted from now on) fail with `error`. A power failure is one
  /// from then on.
  void FailCall(std::size_t number, Failing failing,
                platform::RegistryError error = platform::RegistryError::kOther);

  /// Calls since the latest FailCall, or since the start.
  [[nodiscard]] std::size_t CountCalls() const { return m_calls; }
  /// Whether a failure was injected since the latest FailCall.
  [[nodiscard]] bool HasFailed() const { return m_hasFailed; }

  [[nodiscard]] platform::OpenedKey OpenKey(std::u16string_view path) override;
  [[nodiscard]] platform::OpenedKey CreateKey(std::u16string_view path) override;
  [[nodiscard]] platform::Result<void, platform::RegistryError> DeleteKey(
      std::u16string_view path) override;
  [[nodiscard]] platform::Result<void, platform::RegistryError> BeginGroup() override;
  [[nodiscard]] platform::Result<void, platform::RegistryError> CommitGroup() override;
  void CancelGroup() override;

 private:
  class Key;

  /// Counts one call. Fails with what it shall fail with.
  [[nodiscard]] platform::Result<void, platform::RegistryError> CountCall();
  [[nodiscard]] platform::OpenedKey Wrap(platform::OpenedKey opened);

  platform::Registry& m_registry;
  std::size_t m_calls = 0;
  std::size_t m_failingCall = 0;  ///< 0: none.
  Failing m_failing = Failing::kOnce;
  platform::RegistryError m_error = platform::RegistryError::kOther;
  bool m_hasFailed = false;
  bool m_groupIsOpen = false;
  std::optional<platform::RegistryError> m_doom;
};

}  // namespace support
