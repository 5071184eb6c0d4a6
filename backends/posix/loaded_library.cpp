#include "backends/posix/loaded_library.h"

#include <dlfcn.h>
#include <link.h>

#include <algorithm>
#include <system_error>

namespace posix {

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

platform::Result<void*, std::string> LoadFunction(std::span<const std::filesystem::path> libraries,
                                                  const char* name) {
  std::error_code ignored;
  const auto library = std::ranges::find_if(
      libraries, [&](const auto& path) { return std::filesystem::exists(path, ignored); });
  if (library == libraries.end()) {
    return platform::Failure(libraries.empty()
                                 ? std::string("it is not known where this program is")
                                 : libraries.front().filename().native() + " is missing");
  }
  void* const handle = ::dlopen(library->c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  void* const address = handle == nullptr ? nullptr : ::dlsym(handle, name);
  if (address == nullptr) {
    const char* const reason = ::dlerror();  // Of this thread's latest call.
    return platform::Failure(std::string(reason == nullptr ? "" : reason));
  }
  return address;
}

}  // namespace posix
