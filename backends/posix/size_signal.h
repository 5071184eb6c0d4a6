#pragma once

#include <csignal>

namespace posix {

/// Holds back SIGXFSZ on this thread, which would end the process where a file outgrows the limit
/// of the user; the call that wrote reports the error. The rest of the process keeps its own way
/// with the signal.
class SizeSignalHeld {
 public:
  SizeSignalHeld();
  ~SizeSignalHeld();
  SizeSignalHeld(const SizeSignalHeld&) = delete;
  SizeSignalHeld& operator=(const SizeSignalHeld&) = delete;

 private:
  sigset_t m_signal{};
  sigset_t m_before{};
  bool m_wasPending = false;
};

}  // namespace posix
