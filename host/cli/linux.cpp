// What the command line asks of Linux.

#include <fcntl.h>
#include <fmt/format.h>
#include <langinfo.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "backends/posix/posix_process.h"
#include "backends/udev/serial_ports.h"
#include "backends/udev/udev_serial_devices.h"
#include "host/cli/program.h"
#include "host/cli/system.h"
#include "host/machine/system.h"

namespace cli {
namespace {

/// Returns the program in this program's folder if both are installed, otherwise in the build tree.
/// No other one is taken: it would load libraries from its own place.
std::filesystem::path Find(const machine::Program& program) {
  return machine::Places(machine::FindOwnFile()).GetProgram(program);
}

/// Returns the command line of a program. The error is a sentence.
platform::Result<std::vector<std::string>, std::string> FindCommand(
    const machine::Program& program, const std::vector<std::string>& arguments) {
  const std::filesystem::path path = Find(program);
  if (::access(path.c_str(), X_OK) != 0) {
    return platform::Failure(
        fmt::format("{} is not installed; it belongs in this program's folder", program.name));
  }
  std::vector<std::string> command{path.native()};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return command;
}

}  // namespace

bool IsTerminal(Stream stream) {
  switch (stream) {
    case Stream::kInput:
      return ::isatty(STDIN_FILENO) == 1;
    case Stream::kOutput:
      return ::isatty(STDOUT_FILENO) == 1;
    case Stream::kError:
      break;
  }
  return ::isatty(STDERR_FILENO) == 1;
}

bool ShowsUtf8() { return std::string_view(::nl_langinfo(CODESET)) == "UTF-8"; }

void WriteError(std::string_view text) {
  static_cast<void>(::write(STDERR_FILENO, text.data(), text.size()));
}

std::optional<std::string> MakeTemporaryFolder() {
  std::error_code error;
  std::string path = (std::filesystem::temp_directory_path(error) / "voxtrel-XXXXXX").native();
  // The system gives the folder to its owner alone.
  return error || ::mkdtemp(path.data()) == nullptr ? std::nullopt : std::optional(path);
}

bool HasDisplay() {
  constexpr const char* kVariables[] = {"WAYLAND_DISPLAY", "DISPLAY", "QT_QPA_PLATFORM"};
  return std::ranges::any_of(kVariables, [](const char* name) {
    const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe)
    // An empty variable is how scripts switch a display off.
    return value != nullptr && value[0] != '\0';
  });
}

bool CanShowHome() { return HasDisplay(); }

platform::Result<void, std::string> RunWindow(const machine::Program& program,
                                              const std::vector<std::string>& arguments,
                                              const std::vector<std::string>& variables) {
  const auto command = FindCommand(program, arguments);
  if (!command) {
    return platform::Failure(command.error());
  }
  const auto end = posix::RunInForeground(*command, variables);
  if (!end) {
    return platform::Failure(fmt::format("{} cannot be started", program.name));
  }
  if (end->wasKilled) {
    return platform::Failure(fmt::format("{} was ended by signal {}", program.name, end->exitCode));
  }
  if (end->exitCode != 0) {
    return platform::Failure(
        fmt::format("{} failed with exit code {}", program.name, end->exitCode));
  }
  return {};
}

std::string BecomeProgram(const machine::Program& program,
                          const std::vector<std::string>& arguments,
                          const std::vector<std::string>& variables) {
  const auto command = FindCommand(program, arguments);
  return command ? fmt::format("{} cannot be started: {}", program.name,
                               posix::Become(*command, variables).message())
                 : command.error();
}

void PublishPorts(platform::Registry& registry) {
  udev_ports::UdevSerialDevices devices;
  static_cast<void>(udev_ports::PublishSerialPorts(registry, devices));
}

void ReserveStandardStreams() {
  // A program that was started with a closed stream would open its first file under that number,
  // and what it prints would go into the user's recording.
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(stream, F_GETFD) == -1) {
      // It gets the lowest free number, which is this one. It is opened for the wrong direction, so
      // its use fails.
      static_cast<void>(::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY));
    }
  }
}

}  // namespace cli
