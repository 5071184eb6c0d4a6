#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "backends/desktop/programs.h"
#include "platform/result.h"

namespace desktop {

/// Returns the command that opens `url` with the program that the user's desktop has for a scheme
/// of URLs, else for a type of files if `type` is not null. Returns nothing if there is none that
/// is installed and can be started: one that needs a terminal, or whose command is broken, cannot.
///
/// GIO chooses the program and does not start it. It would hand "%f", and an entry without a place
/// for the address, a file's path without the place within the page. It would give the program our
/// standard streams and open a terminal, and it does not see a program that fails at once.
[[nodiscard]] std::optional<Command> FindDefault(const char* scheme, const char* type,
                                                 const std::string& url);

/// What is wrong with the Exec key of a desktop file.
enum class ExecError : std::uint8_t {
  kNoProgram,  ///< It names none.
  kBadQuotes,  ///< A quote has no end, or a backslash stands at the end.
};

/// Returns the command that opens `url`, by the rules for quotes and field codes of the Exec key of
/// a desktop file. The URL is one argument whatever it holds. It comes last if the key has no place
/// for it.
[[nodiscard]] platform::Result<Command, ExecError> MakeCommand(const std::string& exec,
                                                               const std::string& url);

/// What became of a telephone number.
enum class HandOver : std::uint8_t {
  kDone,
  kNoProgram,  ///< The desktop has no program for telephone numbers.
  kFailed,     ///< It cannot be started, or it failed at once.
};

/// Hands a "tel:" URI to the desktop's program for telephone calls, and watches it for at most
/// `patience`. Nothing else is tried: xdg-open would open a browser if there is no such program.
[[nodiscard]] HandOver HandOverCall(const Environment& environment, const std::string& uri,
                                    std::chrono::milliseconds patience);

/// Returns whether the desktop has a program for telephone calls.
[[nodiscard]] bool HasTelephoneProgram();

}  // namespace desktop
