#include "backends/loading/loaded_library.h"

#include <dlfcn.h>
#include <link.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <system_error>

namespace loading {
namespace {

/// What went wrong in this thread's latest call.
std::string LatestError() {
  const char* const text = ::dlerror();
  return text == nullptr ? std::string() : text;
}

}  // namespace

std::filesystem::path FindOwnFile() {
  Dl_info found{};
  void* extra = nullptr;
  if (::dladdr1(reinterpret_cast<const void*>(&FindOwnFile), &found, &extra, RTLD_DL_LINKMAP) ==
      0) {
    return {};
  }
  const std::string name = static_cast<const link_map*>(extra)->l_name;
  std::error_code ignored;
  // The program itself has no name there.
  return std::filesystem::weakly_canonical(name.empty() ? "/proc/self/exe" : name, ignored);
}

std::filesystem::path FindBuildFolder(const std::filesystem::path& file) {
  constexpr std::array<std::string_view, 4> kRooms{"applet", "benchmarks", "host", "tests"};
  if (!file.is_absolute()) {
    return {};
  }
  std::string room;
  for (std::filesystem::path at = file; at.has_relative_path(); at = at.parent_path()) {
    std::error_code ignored;
    if (std::filesystem::exists(at / "CMakeCache.txt", ignored)) {
      return std::ranges::find(kRooms, room) != kRooms.end() ? at : std::filesystem::path();
    }
    room = at.filename().string();
  }
  return {};
}

std::vector<std::filesystem::path> FindLibraryPlaces(const std::filesystem::path& file,
                                                     const char* library, const char* folder) {
  if (!file.is_absolute()) {
    return {};
  }
  const std::filesystem::path own = file.parent_path();
  const std::filesystem::path build = FindBuildFolder(file);
  if (!build.empty()) {
    return {own / library, build / "backends" / folder / library};
  }
  return {own / library, own.parent_path() / "lib" / "voxtrel" / library};
}

LoadedFunction LoadFunction(std::span<const std::filesystem::path> libraries, const char* name) {
  std::error_code ignored;
  const auto library =
      std::find_if(libraries.begin(), libraries.end(),
                   [&ignored](const auto& path) { return std::filesystem::exists(path, ignored); });
  if (library == libraries.end()) {
    return {nullptr, libraries.empty() ? std::string()
                                       : libraries.front().filename().native() + " is missing"};
  }
  void* const handle = ::dlopen(library->c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  void* const address = handle == nullptr ? nullptr : ::dlsym(handle, name);
  return {address, address == nullptr ? LatestError() : std::string()};
}

LoadedFunction LoadDoor(const char* library, const char* folder, const char* door) {
  return LoadFunction(FindLibraryPlaces(FindOwnFile(), library, folder), door);
}

}  // namespace loading
