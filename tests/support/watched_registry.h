#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "platform/registry.h"
#include "tests/support/fault_plan.h"

namespace support {

/// The registry of a test: every call goes on to another registry. A plan lets the n-th call fail.
/// Calls of the registry and of its keys are counted together, CancelGroup not at all. A failed
/// call does nothing, but it dooms the group it is in, as the contract says. A test that changes
/// what a call does overrides it. Used by one thread.
class WatchedRegistry : public platform::Registry {
 public:
  explicit WatchedRegistry(platform::Registry& inner) : m_inner(inner) {}
  /// A registry on a medium that takes no writes, or has no room left: each write is refused.
  WatchedRegistry(platform::Registry& inner, platform::RegistryError refusal)
      : m_inner(inner), m_refusal(refusal) {}

  /// Lets call `number` (from 1, counted from now on) fail with `error`.
  void FailCall(std::size_t number, Failing failing,
                platform::RegistryError error = platform::RegistryError::kOther) {
    m_error = error;
    m_plan.FailCall(number, failing);
  }
  [[nodiscard]] std::size_t CountCalls() const { return m_plan.CountCalls(); }
  [[nodiscard]] bool HasFailed() const { return m_plan.HasFailed(); }

  /// Returns the number of writes that were refused.
  [[nodiscard]] std::size_t CountRefusals() const { return m_refusals; }

  [[nodiscard]] platform::OpenedKey OpenKey(std::u16string_view path) override;
  [[nodiscard]] platform::OpenedKey CreateKey(std::u16string_view path) override;
  [[nodiscard]] platform::Result<void, platform::RegistryError> DeleteKey(
      std::u16string_view path) override;
  [[nodiscard]] platform::Result<void, platform::RegistryError> BeginGroup() override;
  [[nodiscard]] platform::Result<void, platform::RegistryError> CommitGroup() override;
  void CancelGroup() override;

 private:
  class Key;

  /// Counts one call. Fails if the plan says so, or if the group is doomed.
  [[nodiscard]] platform::Result<void, platform::RegistryError> Count();
  /// Counts one call that writes. Fails also if writes are refused.
  [[nodiscard]] platform::Result<void, platform::RegistryError> CountWrite();
  [[nodiscard]] platform::OpenedKey Wrap(platform::OpenedKey opened);

  platform::Registry& m_inner;
  const std::optional<platform::RegistryError> m_refusal;
  FaultPlan m_plan;
  platform::RegistryError m_error = platform::RegistryError::kOther;
  std::size_t m_refusals = 0;
  bool m_groupIsOpen = false;
  std::optional<platform::RegistryError> m_doom;
};

}  // namespace support
