#pragma once

#include <filesystem>
#include <span>
#include <string>

#include "platform/result.h"

namespace posix {

/// Returns the file of this code, which is a program or a library that a program has loaded.
/// Returns an empty path if the system does not know it.
[[nodiscard]] std::filesystem::path FindOwnFile();

/// Loads the first of `libraries` that exists, for good, and returns the address of a function that
/// it exports. The error says in the system's words why there is none.
[[nodiscard]] platform::Result<void*, std::string> LoadFunction(
    std::span<const std::filesystem::path> libraries, const char* name);

}  // namespace posix
