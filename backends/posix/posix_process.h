#pragma once

#include <string>
#include <system_error>
#include <vector>

#include "platform/process.h"
#include "platform/result.h"

namespace posix {

/// The process of the program itself, which really ends: the call does not return.
class PosixProcess final : public platform::Process {
 public:
  /// Flushes standard output and standard error. Nothing else is done, since other threads may
  /// still run: no destructors of static objects, no exit handlers.
  void End(int exitCode) override;
};

/// How a program ended.
struct ProgramEnd {
  bool wasKilled = false;
  int exitCode = 0;  ///< The signal's number if it was killed.
};

/// Runs a program with the standard streams of this one, and returns when it has ended. `command`
/// begins with the program's path. `variables` ("NAME=value") are set in its environment. Fails if
/// the program cannot be started.
[[nodiscard]] platform::Result<ProgramEnd, std::error_code> RunInForeground(
    const std::vector<std::string>& command, const std::vector<std::string>& variables);

/// Runs a program in the place of this one, as RunInForeground takes it. Returns only if it cannot
/// be started, and why.
[[nodiscard]] std::error_code Become(const std::vector<std::string>& command,
                                     const std::vector<std::string>& variables);

}  // namespace posix
