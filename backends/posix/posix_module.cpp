#include "backends/posix/posix_module.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>

#include "platform/module.h"

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
  constexpr int kFirstBehindStandardStreams = 3;
  return Descriptor(::fcntl(made.Get(), F_DUPFD_CLOEXEC, kFirstBehindStandardStreams));
}

}  // namespace

platform::IconHandle PosixModule::LoadIcon(int id) {
  auto loaded = m_icons.find(id);
  if (loaded == m_icons.end()) {
    const std::span<const std::byte> picture = m_getPicture(id);
    Descriptor file = picture.empty() ? Descriptor() : MakeFile(picture);
    if (!file.IsOpen()) {
      return platform::kNoIcon;
    }
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
