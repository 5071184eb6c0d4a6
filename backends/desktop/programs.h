#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "backends/desktop/environment.h"

namespace xdg {

/// A program and its arguments, the program's own name first.
using Command = std::vector<std::string>;

/// Path of a program that can be run: `name` itself where it has a slash, else looked for. Empty
/// where there is none.
[[nodiscard]] std::string FindProgram(const Environment& environment, const std::string& name);

/// Starts a program that then has nothing to do with this one: no shell between them, a session of
/// its own, no standard streams, no descriptors of ours, and nobody here who has to wait for it.
///
/// Watches it for at most `patience`: false where it could not be started, or failed within that
/// time; one that still runs is well.
[[nodiscard]] bool StartDetached(const Environment& environment, const Command& command,
                                 std::chrono::milliseconds patience);

/// What a program prints, without the line's end; nothing where it fails, says nothing, or takes
/// longer than `patience`, in which case it is killed.
[[nodiscard]] std::optional<std::string> ReadLine(const Environment& environment,
                                                  const Command& command,
                                                  std::chrono::milliseconds patience);

}  // namespace xdg
