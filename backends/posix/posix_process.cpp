#include "backends/posix/posix_process.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <string_view>

#include "backends/posix/system_calls.h"

namespace posix {
namespace {

std::vector<char*> PointersOf(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) {
    pointers.push_back(text.data());
  }
  pointers.push_back(nullptr);
  return pointers;
}

/// With the "=" at its end.
std::string_view NameOf(std::string_view variable) {
  return variable.substr(0, variable.find('=') + 1);
}

/// The environment of this process, with `variables` in the place of those of the same names.
std::vector<std::string> EnvironmentWith(const std::vector<std::string>& variables) {
  std::vector<std::string> environment = variables;
  for (char* const* inherited = environ; *inherited != nullptr; ++inherited) {
    const std::string_view name = NameOf(*inherited);
    if (std::ranges::none_of(variables,
                             [name](const std::string& set) { return NameOf(set) == name; })) {
      environment.emplace_back(*inherited);
    }
  }
  return environment;
}

platform::Result<ProgramEnd, std::error_code> FailWith(int error) {
  return platform::Failure(std::error_code(error, std::system_category()));
}

}  // namespace

void PosixProcess::End(int exitCode) {
  // Not every stream: another thread may hold the lock of one that it reads from.
  std::fflush(stdout);
  std::fflush(stderr);
  ::_exit(exitCode);
}

platform::Result<ProgramEnd, std::error_code> RunInForeground(
    const std::vector<std::string>& command, const std::vector<std::string>& variables) {
  if (command.empty()) {
    return FailWith(ENOENT);
  }
  std::vector<std::string> arguments = command;
  std::vector<std::string> environment = EnvironmentWith(variables);
  pid_t child = 0;
  // Not fork: between it and exec a process with threads may call very little, and this one has
  // sound and windows.
  if (const int error = ::posix_spawn(&child, command.front().c_str(), nullptr, nullptr,
                                      PointersOf(arguments).data(), PointersOf(environment).data());
      error != 0) {
    return FailWith(error);
  }
  int status = 0;
  if (Retry([&] { return ::waitpid(child, &status, 0); }) < 0) {
    return FailWith(errno);
  }
  return WIFSIGNALED(status) ? ProgramEnd{true, WTERMSIG(status)}
                             : ProgramEnd{false, WEXITSTATUS(status)};
}

std::error_code Become(const std::vector<std::string>& command,
                       const std::vector<std::string>& variables) {
  if (command.empty()) {
    return {ENOENT, std::system_category()};
  }
  std::vector<std::string> arguments = command;
  std::vector<std::string> environment = EnvironmentWith(variables);
  std::fflush(stdout);
  ::execve(command.front().c_str(), PointersOf(arguments).data(), PointersOf(environment).data());
  return {errno, std::system_category()};
}

}  // namespace posix
