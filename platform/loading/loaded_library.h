#pragma once

#include <filesystem>
#include <span>
#include <string>

namespace loading {

/// The file of this code, be it a program or a library that a program has loaded; empty where the
/// system does not tell.
[[nodiscard]] std::filesystem::path FindOwnFile();

/// A function of a library that is loaded for it.
struct LoadedFunction {
  void* address = nullptr;  ///< Null where there is none.
  std::string reason;       ///< Why not, in the system's words.
};

/// Loads the first of `libraries` that is there, for good, and finds a function that it exports.
[[nodiscard]] LoadedFunction LoadFunction(std::span<const std::filesystem::path> libraries,
                                          const char* name);

/// The same for the system's own libraries, which lie beside the applet's once they are installed,
/// and else where they were built: in a folder of platform/.
[[nodiscard]] LoadedFunction LoadDoor(const char* library, const char* folder, const char* door);

}  // namespace loading
