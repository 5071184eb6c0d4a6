#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace loading {

/// The file of this code, be it a program or a library that a program has loaded; empty where the
/// system does not tell.
[[nodiscard]] std::filesystem::path FindOwnFile();

/// The folder of the build in which `file`, an absolute path, was made, be it a program, a test or
/// the applet's library; empty if it is part of none. Only there are other parts looked for in
/// folders next to its own: next to what is installed, folders of the same names are somebody
/// else's.
[[nodiscard]] std::filesystem::path FindBuildFolder(const std::filesystem::path& file);

/// Where a library of the system's own can be, the best place first, if `file` is the code that
/// loads it: with the applet's library once both are installed, and else in the folder of platform/
/// where it was built. None if `file` is no absolute path, since nothing is loaded from the current
/// folder.
[[nodiscard]] std::vector<std::filesystem::path> FindLibraryPlaces(
    const std::filesystem::path& file, const char* library, const char* folder);

/// A function of a library that is loaded for it.
struct LoadedFunction {
  void* address = nullptr;  ///< Null where there is none.
  std::string reason;       ///< Why not, in the system's words.
};

/// Loads the first of `libraries` that is there, for good, and finds a function that it exports.
[[nodiscard]] LoadedFunction LoadFunction(std::span<const std::filesystem::path> libraries,
                                          const char* name);

/// The same for a library of the system's own, which is in FindLibraryPlaces of this code.
[[nodiscard]] LoadedFunction LoadDoor(const char* library, const char* folder, const char* door);

}  // namespace loading
