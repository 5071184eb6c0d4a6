#pragma once

#include <sys/types.h>

#include <functional>

#include "backends/posix/system_calls.h"

namespace posix_test {

/// The writing end of a pipe to the test, as a child process sees it.
class ToTest {
 public:
  explicit ToTest(int descriptor) : m_descriptor(descriptor) {}
  void Say(char word) const;

 private:
  int m_descriptor;
};

/// A copy of this process that runs one function and exits with its result. Killed, if it still
/// runs, and waited for at the end. Started while the test has one thread only.
class ChildProcess {
 public:
  explicit ChildProcess(const std::function<int(const ToTest&)>& body);
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  /// Waits for a word of the child; 0 if it ended without one.
  [[nodiscard]] char Hear() const;

  /// Waits for its end and returns its exit code, or minus the signal that ended it.
  [[nodiscard]] int Wait();

  /// Ends it in the middle of whatever it does.
  void Kill();

 private:
  pid_t m_pid = -1;
  posix::Descriptor m_fromChild;
};

/// Exit code of a child that runs `body` without the rights of an administrator.
[[nodiscard]] int RunAsOrdinaryUser(const std::function<int()>& body);

}  // namespace posix_test
