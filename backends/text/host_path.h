#pragma once

#include <filesystem>
#include <string>
#include <string_view>

// Names and paths of the host. Each kind of system has one source file with these functions, and
// the build chooses it. The library itself would read a name in the character set of the user.

namespace text {

/// Returns the path that a name of the host, as users type it, means.
[[nodiscard]] std::filesystem::path ToHostPath(std::string_view name);

/// Returns the name of a path, as users read it.
[[nodiscard]] std::string FromHostPath(const std::filesystem::path& path);

/// Returns the name by which the system's files know a path of the host. A "/" is between its
/// parts.
[[nodiscard]] std::u16string ToFileName(const std::filesystem::path& path);

}  // namespace text
