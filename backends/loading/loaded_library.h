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
/// the applet's library. Returns an empty path if it is part of no build. Only in a build are other
/// parts looked for in folders next to its own: next to an installed file, folders of the same
/// names are somebody else's.
[[nodiscard]] std::filesystem::path FindBuildFolder(const std::filesystem::path& file);

/// Returns the places of one of the system's own libraries, the best first. `file` is the code that
/// loads it. If both are installed, that is next to the applet's library; otherwise it is the
/// folder of platform/ in which it was built. Returns none if `file` is no absolute path, since
/// nothing is loaded from the current folder.
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
