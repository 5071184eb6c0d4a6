#pragma once

#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/run_program.h"

/// Runs a program with a terminal for its streams, on which `typed` waits to be read, and gives
/// what the terminal was shown.
[[nodiscard]] inline support::ProgramRun RunOnTerminal(std::vector<std::string> arguments,
                                                       std::string_view typed = {}) {
  std::vector<char*> pointers;
  for (std::string& argument : arguments) {
    pointers.push_back(argument.data());
  }
  pointers.push_back(nullptr);

  int terminal = -1;
  const pid_t child = ::forkpty(&terminal, nullptr, nullptr, nullptr);
  if (child == 0) {
    ::execv(pointers[0], pointers.data());
    ::_exit(127);
  }
  support::ProgramRun run;
  if (child < 0 || ::write(terminal, typed.data(), typed.size()) < 0) {
    return run;
  }
  std::array<char, 4096> buffer{};
  // Reading fails when the program, the only one at the other end, has gone.
  for (ssize_t count = 0; (count = ::read(terminal, buffer.data(), buffer.size())) > 0;) {
    run.out.append(buffer.data(), static_cast<std::size_t>(count));
  }
  int status = 0;
  if (::waitpid(child, &status, 0) == child && WIFEXITED(status)) {
    run.exitCode = WEXITSTATUS(status);
  }
  ::close(terminal);
  return run;
}
