#include "tests/backends/posix/child_process.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <stdexcept>

#include "backends/posix/system_calls.h"

namespace posix_test {

void ToTest::Say(char word) const {
  static_cast<void>(posix::Retry([&] { return ::write(m_descriptor, &word, 1); }));
}

ChildProcess::ChildProcess(const std::function<int(const ToTest&)>& body) {
  std::array<int, 2> ends{};
  if (::pipe(ends.data()) != 0) {
    throw std::runtime_error("no pipe");
  }
  m_fromChild = posix::Descriptor(ends[0]);
  posix::Descriptor toTest(ends[1]);
  m_pid = ::fork();
  if (m_pid == -1) {
    throw std::runtime_error("no child process");
  }
  if (m_pid == 0) {
    ::_exit(body(ToTest(toTest.Get())));
  }
}

ChildProcess::~ChildProcess() {
  if (m_pid != -1) {
    Kill();
  }
}

char ChildProcess::Hear() const {
  char word = 0;
  const ssize_t count = posix::Retry([&] { return ::read(m_fromChild.Get(), &word, 1); });
  return count == 1 ? word : '\0';
}

int ChildProcess::Wait() {
  int status = 0;
  if (posix::Retry([&] { return ::waitpid(m_pid, &status, 0); }) != m_pid) {
    throw std::runtime_error("the child process is lost");
  }
  m_pid = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

void ChildProcess::Kill() {
  ::kill(m_pid, SIGKILL);
  static_cast<void>(Wait());
}

int RunAsOrdinaryUser(const std::function<int()>& body) {
  constexpr uid_t kNobody = 65534;
  constexpr int kNoSuchUser = 99;
  ChildProcess child([&](const ToTest&) {
    if (::geteuid() == 0 && (::setgid(kNobody) != 0 || ::setuid(kNobody) != 0)) {
      return kNoSuchUser;
    }
    return body();
  });
  return child.Wait();
}

}  // namespace posix_test
