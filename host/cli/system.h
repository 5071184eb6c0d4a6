#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/machine/places.h"
#include "platform/registry.h"
#include "platform/result.h"

// What differs from one system to the next. Each system has one source file with these functions,
// and the build chooses it.

namespace cli {

enum class Stream : std::uint8_t { kInput, kOutput, kError };

/// Returns whether a user reads, or types, what goes through the stream.
[[nodiscard]] bool IsTerminal(Stream stream);

/// Returns whether the terminal shows UTF-8.
[[nodiscard]] bool ShowsUtf8();

/// Writes to standard error without any memory.
void WriteError(std::string_view text);

/// Makes a folder for temporary files, which only this user may enter. Returns its path. Returns
/// nothing if it cannot be made.
[[nodiscard]] std::optional<std::string> MakeTemporaryFolder();

/// Returns whether a window can be shown; the window knows best how to use it.
[[nodiscard]] bool HasDisplay();

/// Returns whether the window of the voice tags can be shown. Not every system has it.
[[nodiscard]] bool CanShowHome();

/// Starts a program of the system with a window and waits for its end. `variables` ("NAME=value")
/// are set in its environment. Fails with a sentence without a full stop.
[[nodiscard]] platform::Result<void, std::string> RunWindow(
    const machine::Program& program, const std::vector<std::string>& arguments,
    const std::vector<std::string>& variables);

/// Lets a program of the system that needs no window take the place of this one, with its terminal.
/// Returns only if that fails: a sentence without a full stop that says why.
[[nodiscard]] std::string BecomeProgram(const machine::Program& program,
                                        const std::vector<std::string>& arguments,
                                        const std::vector<std::string>& variables);

/// Makes the ports that the machine has now known in the registry. If that fails, the ports are
/// those of last time.
void PublishPorts(platform::Registry& registry);

}  // namespace cli
