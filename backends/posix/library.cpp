#include "backends/posix/library.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace posix {
namespace {

bool WriteContent(int descriptor, std::span<const std::byte> bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
    if (written < 0 && errno != EINTR) {
      return false;
    }
    bytes = bytes.subspan(static_cast<std::size_t>(written < 0 ? 0 : written));
  }
  return true;
}

/// A file in memory with this content for good. Never descriptor 0, which is no icon.
Descriptor MakeFile(std::span<const std::byte> content) {
  const Descriptor made(::memfd_create("icon", MFD_CLOEXEC | MFD_ALLOW_SEALING));
  if (!made.IsOpen() || !WriteContent(made.Get(), content) ||
      ::fcntl(made.Get(), F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE | F_SEAL_SEAL) !=
          0) {
    return Descriptor();
  }
  constexpr int kFirstAfterStandardStreams = 3;
  return Descriptor(::fcntl(made.Get(), F_DUPFD_CLOEXEC, kFirstAfterStandardStreams));
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
  // All symbols are found now, so a library that lacks one fails here and not in the middle of a
  // call.
  void* const handle = ::dlopen(library->c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  void* const address = handle == nullptr ? nullptr : ::dlsym(handle, name);
  if (address == nullptr) {
    const char* const reason = ::dlerror();  // Of this thread's latest call.
    return platform::Failure(std::string(reason == nullptr ? "" : reason));
  }
  return address;
}

platform::IconHandle PosixModule::LoadIcon(int id) {
  auto loaded = m_icons.find(id);
  if (loaded == m_icons.end()) {
    const std::span<const std::byte> picture = m_getPicture(id);
    Descriptor file = picture.empty() ? Descriptor() : MakeFile(picture);
    if (!file.IsOpen()) {
      return platform::kNoIcon;
    }
    // The next request gets the same file, so a panel that asks often opens no more descriptors.
    loaded = m_icons.emplace(id, std::move(file)).first;
  }
  return static_cast<platform::IconHandle>(loaded->second.Get());
}

void PosixModule::DestroyIcon(platform::IconHandle icon) {
  std::erase_if(m_icons, [icon](const auto& loaded) {
    return static_cast<platform::IconHandle>(loaded.second.Get()) == icon;
  });
}

int PosixModule::LoadString(int id, std::span<char16_t> buffer) {
  return platform::CopyModuleString(id, buffer);
}

}  // namespace posix
