#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

// Files under names that the standard library cannot reach on every system: Windows takes the dot
// off the end of "Zedra Tech.".

namespace support {

/// What Windows takes literally begins so.
inline constexpr std::string_view kExact = "\\\\?\\";

/// Returns the path under which the standard library finds a file or a folder. It lists none there;
/// the functions below do.
[[nodiscard]] inline std::filesystem::path Exactly(std::filesystem::path path) {
  const bool isWindows = std::filesystem::path::preferred_separator == '\\';
  if (!isWindows || path.string().starts_with(kExact)) {
    return path;
  }
  return std::filesystem::path(kExact) += path.make_preferred();
}

/// Returns a path as a program prints it and as users type it.
[[nodiscard]] inline std::string Shown(const std::filesystem::path& path) {
  const std::string name = path.string();
  return name.starts_with(kExact) ? name.substr(kExact.size()) : name;
}

// Each system has one source file with these functions.

/// Returns the names of all that is in a folder, in their order.
[[nodiscard]] std::vector<std::string> NamesIn(const std::filesystem::path& folder);

/// Takes away a folder with everything in it, as far as that is possible.
void RemoveTree(const std::filesystem::path& folder);

}  // namespace support
