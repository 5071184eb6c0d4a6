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
/// when it has ended. `command` begins with the program's name, which is looked for in $PATH where
/// it has no slash. `variables` ("NAME=value") are set in its environment. Nothing where it cannot
/// be started.
[[nodiscard]] std::optional<ProgramEnd> RunInForeground(const std::vector<std::string>& command,
                                                        const std::vector<std::string>& variables);

/// The folder that holds the program of this process, "" where the system does not tell.
[[nodiscard]] std::string FindOwnFolder();

}  // namespace posix
