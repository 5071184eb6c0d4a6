#include "platform/loading/loaded_library.h"

#include <dlfcn.h>
#include <link.h>

#include <algorithm>
#include <system_error>
#include <vector>

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
  const std::filesystem::path own = FindOwnFile().parent_path();
  const std::filesystem::path built = std::filesystem::path("platform") / folder;
  std::vector<std::filesystem::path> places;
  for (const std::filesystem::path& way :
       {std::filesystem::path("."), std::filesystem::path("../lib/voxtrel"), ".." / built,
        "../.." / built}) {
    places.push_back((own / way / library).lexically_normal());
  }
  return LoadFunction(places, door);
}

}  // namespace loading
