#include "host/cli/connection_window.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <string>

#include "backends/posix/loaded_library.h"
#include "host/machine/places.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

fs::path FindProgram() {
  return machine::Places(posix::FindOwnFile()).GetProgram(machine::kConnectionWindow);
}

}  // namespace

bool HasScreen() {
  for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
    // Read before there is a second thread.
    const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe)
    if (value != nullptr && *value != '\0') {
      return true;
    }
  }
  return false;
}

bool RunConnectionWindow(const fs::path& root) {
  std::string program = FindProgram().native();
  std::string argument = root.native();
  std::array<char*, 3> arguments{program.data(), argument.data(), nullptr};
  ::pid_t child = 0;
  if (::posix_spawn(&child, program.c_str(), nullptr, nullptr, arguments.data(), environ) != 0) {
    return false;
  }
  int status = 0;
  while (::waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) {
      return false;
    }
  }
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace cli
