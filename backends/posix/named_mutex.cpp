#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <system_error>
#include <utility>

#include "backends/posix/descriptor.h"
#include "backends/posix/posix_file.h"
#include "backends/posix/posix_threads.h"
#include "backends/text/utf.h"

namespace posix {
namespace {

constexpr int kOwnerOnly = 0600;

class FileMutex final : public platform::NamedMutex {
 public:
  explicit FileMutex(Descriptor file) : m_file(std::move(file)) {}

 private:
  const Descriptor m_file;
};

int LockAtOnce(int file) {
  int result = 0;
  do {
    result = ::flock(file, LOCK_EX | LOCK_NB);
  } while (result != 0 && errno == EINTR);
  return result;
}

std::string PathOf(const std::string& lockFolder, std::u16string_view name) {
  return lockFolder + "/" + PosixThreads::LockName(name);
}

}  // namespace

std::string PosixThreads::LockName(std::u16string_view name) {
  return "." + text::ToHostName(name) + ".lock";
}

bool PosixThreads::WasNamedMutexMade(const std::string& lockFolder, std::u16string_view name) {
  std::error_code error;
  // Where it cannot be told, taking it has to tell.
  return std::filesystem::exists(PathOf(lockFolder, name), error) || error;
}

platform::CreatedMutex PosixThreads::CreateNamedMutex(std::u16string_view name) {
  static_cast<void>(MakeFolders(m_lockFolder));  // If that fails, so does what comes next.
  const std::string path = PathOf(m_lockFolder, name);
  Descriptor file(::open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, kOwnerOnly));
  if (!file.IsOpen()) {
    return {};
  }
  if (LockAtOnce(file.Get()) != 0) {
    return {nullptr, errno == EWOULDBLOCK};
  }
  return {std::make_unique<FileMutex>(std::move(file)), false};
}

}  // namespace posix
