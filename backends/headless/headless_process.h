#pragma once

#include <mutex>
#include <optional>

#include "platform/process.h"

namespace headless {

/// A process that only remembers that it was to end, and goes on.
class HeadlessProcess final : public platform::Process {
 public:
  void End(int exitCode) override;

  /// Exit code of the first end; nothing while there was none. A process ends but once, so later
  /// ones change nothing.
  [[nodiscard]] std::optional<int> GetExitCode() const;

 private:
  mutable std::mutex m_mutex;
  std::optional<int> m_exitCode;
};

}  // namespace headless
