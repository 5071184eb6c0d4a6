#include "tests/e2e/background_program.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace e2e {
namespace {

/// In the child, between fork and exec, where only the simplest calls are allowed.
[[noreturn]] void Become(char* const* arguments, const char* log, pid_t parent) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) _exit(1);
  const int output = open(log, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  const int input = open("/dev/null", O_RDONLY | O_CLOEXEC);
  dup2(input, STDIN_FILENO);
  dup2(output, STDOUT_FILENO);
  dup2(output, STDERR_FILENO);
  execvp(arguments[0], arguments);
  _exit(127);
}

pid_t Launch(std::vector<std::string>& arguments, const std::filesystem::path& log) {
  std::vector<char*> pointers;
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  const pid_t parent = getpid();
  const pid_t child = fork();
  if (child == 0) Become(pointers.data(), log.c_str(), parent);
  return child;
}

}  // namespace

BackgroundProgram::BackgroundProgram(std::vector<std::string> arguments,
                                     const std::filesystem::path& log)
    : m_process(Launch(arguments, log)) {}

BackgroundProgram::~BackgroundProgram() { Kill(); }

bool BackgroundProgram::HasEnded() const {
  if (m_process <= 0) return true;
  siginfo_t info{};
  return waitid(P_PID, static_cast<id_t>(m_process), &info, WEXITED | WNOHANG | WNOWAIT) != 0 ||
         info.si_pid != 0;
}

void BackgroundProgram::Kill() {
  if (m_process <= 0) return;
  kill(m_process, SIGKILL);
  waitpid(m_process, nullptr, 0);
  m_process = 0;
}

void BackgroundProgram::Freeze() {
  if (m_process > 0) kill(m_process, SIGSTOP);
}

}  // namespace e2e
