#include "host/panel/standard_output.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstddef>

namespace panel {

int TakeStandardOutput() {
  // A panel that ended must not take the applets with it that are open.
  static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
  const int own = ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  static_cast<void>(::dup2(STDERR_FILENO, STDOUT_FILENO));
  return own;
}

bool WriteAll(int descriptor, const char* bytes, long long count) {
  while (count > 0) {
    const ssize_t written = ::write(descriptor, bytes, static_cast<std::size_t>(count));
    if (written < 0 && errno == EINTR) {
      continue;
    }
    if (written <= 0) {
      return false;
    }
    bytes += written;
    count -= written;
  }
  return true;
}

}  // namespace panel
