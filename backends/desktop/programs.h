#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/result.h"

namespace desktop {

/// What the environment of the process says about the user's programs.
struct Environment {
  std::vector<std::string> programFolders;  ///< Where programs are looked for, best first.
  std::vector<std::string> dataFolders;     ///< Where programs keep their data, best first.
  std::vector<std::string> languages;  ///< Of the user's texts, best first, as "pt_BR" or "de".
  std::string browsers;                ///< $BROWSER: commands with colons between them.
};

/// Is called before there is a second thread.
[[nodiscard]] Environment ReadEnvironment();

/// A program and its arguments, the program's own name first.
using Command = std::vector<std::string>;

/// Returns the path of a program that can be run: `name` itself if it has a slash, else the first
/// one in the program folders. Returns nothing if there is none.
[[nodiscard]] std::optional<std::string> FindProgram(const Environment& environment,
                                                     const std::string& name);

enum class StartError : std::uint8_t {
  kNoProgram,  ///< There is none of that name.
  kFailed,     ///< It could not be started, or failed while it was watched.
};

/// Starts a program that then has nothing to do with this one: no shell between them, a session of
/// its own, no standard streams, no descriptors of ours, and nobody here who has to wait for it.
///
/// Watches it for at most `patience`. A program that still runs then has not failed.
[[nodiscard]] platform::Result<void, StartError> StartDetached(const Environment& environment,
                                                               const Command& command,
                                                               std::chrono::milliseconds patience);

}  // namespace desktop
