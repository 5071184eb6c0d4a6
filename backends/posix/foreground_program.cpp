#include "backends/posix/foreground_program.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string_view>

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

/// The environment of this process with some variables set anew.
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

}  // namespace

std::optional<ProgramEnd> RunInForeground(const std::vector<std::string>& command,
                                          const std::vector<std::string>& variables) {
  std::vector<std::string> arguments = command;
  std::vector<std::string> environment = EnvironmentWith(variables);
  pid_t child = 0;
  if (command.empty() ||
      ::posix_spawn(&child, command.front().c_str(), nullptr, nullptr, PointersOf(arguments).data(),
                    PointersOf(environment).data()) != 0) {
    return std::nullopt;
  }
  int status = 0;
  while (::waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) {
      return std::nullopt;
    }
  }
  return WIFSIGNALED(status) ? ProgramEnd{true, WTERMSIG(status)}
                             : ProgramEnd{false, WEXITSTATUS(status)};
}

}  // namespace posix
