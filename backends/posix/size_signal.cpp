#include "backends/posix/size_signal.h"

#include <cerrno>
#include <ctime>

namespace posix {
namespace {

bool IsPending(int signal) {
  sigset_t pending{};
  return ::sigpending(&pending) == 0 && ::sigismember(&pending, signal) == 1;
}

}  // namespace

SizeSignalHeld::SizeSignalHeld() {
  ::sigemptyset(&m_signal);
  ::sigaddset(&m_signal, SIGXFSZ);
  ::pthread_sigmask(SIG_BLOCK, &m_signal, &m_before);
  m_wasPending = IsPending(SIGXFSZ);
}

SizeSignalHeld::~SizeSignalHeld() {
  const int savedErrno = errno;
  // One that came before is another's; one that came since is taken away unheard.
  if (!m_wasPending && IsPending(SIGXFSZ)) {
    const timespec noWait{};
    while (::sigtimedwait(&m_signal, nullptr, &noWait) == -1 && errno == EINTR) {
    }
  }
  ::pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
  errno = savedErrno;
}

}  // namespace posix
