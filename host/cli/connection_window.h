#pragma once

#include <filesystem>

namespace cli {

/// Whether this session of the user has a screen.
[[nodiscard]] bool HasScreen();

/// Shows the connection settings of `root` in the window of a program of its own, which stands
/// beside this one, and waits until the user has closed it. False where that program is missing or
/// failed.
[[nodiscard]] bool RunConnectionWindow(const std::filesystem::path& root);

}  // namespace cli
