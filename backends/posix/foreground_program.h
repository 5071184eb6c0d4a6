#pragma once

#include <optional>
#include <string>
#include <vector>

namespace posix {

/// How a program ended.
struct ProgramEnd {
  bool wasKilled = false;
  int exitCode = 0;  ///< The signal's number for one that was killed.
};

/// Runs a program in the place of this one, so to speak, with its standard streams, and returns
/// when it has ended. `command` begins with the program's path. `variables` ("NAME=value") are set
/// in its environment. Nothing if it cannot be started.
[[nodiscard]] std::optional<ProgramEnd> RunInForeground(const std::vector<std::string>& command,
                                                        const std::vector<std::string>& variables);

}  // namespace posix
