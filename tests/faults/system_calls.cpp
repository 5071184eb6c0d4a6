// Runs a program and writes how many calls of the system it made, its exit code in front:
//
//   system_calls FILE PROGRAM ARGUMENTS...
//
// Ends with 77 if the machine lets nobody watch another process. Calls of further threads are not
// counted.

#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>

namespace {

constexpr int kCannotWatch = 77;

/// Returns the number of stops at calls, two for each. Sets `status` to that of the end.
long CountStops(pid_t child, int& status) {
  constexpr int kCallStop = SIGTRAP | 0x80;
  long stops = 0;
  int signal = 0;
  while (::ptrace(PTRACE_SYSCALL, child, nullptr, signal) == 0 &&
         ::waitpid(child, &status, 0) == child && WIFSTOPPED(status)) {
    const int stopped = WSTOPSIG(status);
    stops += stopped == kCallStop ? 1 : 0;
    signal = stopped == kCallStop || stopped == SIGTRAP ? 0 : stopped;
  }
  return stops;
}

}  // namespace

int main(int count, char** arguments) {
  if (count < 3) {
    return 2;
  }
  const pid_t child = ::fork();
  if (child == 0) {
    if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) {
      ::_exit(kCannotWatch);
    }
    ::raise(SIGSTOP);
    ::execv(arguments[2], arguments + 2);
    ::_exit(127);
  }
  int status = 0;
  if (child == -1 || ::waitpid(child, &status, 0) != child || !WIFSTOPPED(status) ||
      ::ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD) != 0) {
    return kCannotWatch;
  }
  const long stops = CountStops(child, status);
  std::ofstream(arguments[1]) << (WIFEXITED(status) ? WEXITSTATUS(status) : -1) << ' ' << stops / 2
                              << '\n';
  return 0;
}
