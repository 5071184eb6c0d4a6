// What the command line asks of Windows.

#include <fcntl.h>
#include <fmt/format.h>
#include <io.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <random>

#include "backends/text/host_path.h"
#include "backends/win32/win32_process.h"
#include "backends/win32/windows.h"
#include "host/cli/program.h"
#include "host/cli/system.h"
#include "host/machine/system.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

constexpr const char* kAppletLibrary = "voxtrel.cpl";

std::FILE* ToFile(Stream stream) {
  switch (stream) {
    case Stream::kInput:
      return stdin;
    case Stream::kOutput:
      return stdout;
    case Stream::kError:
      break;
  }
  return stderr;
}

/// Returns the control panel of this Windows.
fs::path FindControlPanel() {
  std::array<wchar_t, MAX_PATH> folder{};
  const UINT length = ::GetSystemDirectoryW(folder.data(), static_cast<UINT>(folder.size()));
  return fs::path(folder.begin(), folder.begin() + length) / "control.exe";
}

}  // namespace

// The system calls every device of characters a terminal, also the one that leads nowhere.
bool IsTerminal(Stream stream) {
  DWORD mode = 0;
  const auto handle = reinterpret_cast<HANDLE>(::_get_osfhandle(::_fileno(ToFile(stream))));
  return ::GetConsoleMode(handle, &mode) != FALSE;
}

// The main function sees to that.
bool ShowsUtf8() { return true; }

void WriteError(std::string_view text) {
  DWORD written = 0;
  ::WriteFile(::GetStdHandle(STD_ERROR_HANDLE), text.data(), static_cast<DWORD>(text.size()),
              &written, nullptr);
}

// The user's folder for temporary files belongs to the user alone.
std::optional<std::string> MakeTemporaryFolder() {
  constexpr int kAttempts = 100;
  std::error_code error;
  const fs::path parent = fs::temp_directory_path(error);
  std::random_device random;
  for (int i = 0; i < kAttempts && !error; ++i) {
    const fs::path folder = parent / fmt::format("voxtrel-{:08x}", random());
    if (fs::create_directory(folder, error)) {
      return text::FromHostPath(folder);
    }
  }
  return std::nullopt;
}

bool HasDisplay() { return true; }

bool CanShowHome() { return false; }

// The sheet is the one window of Voxtrel that Windows has.
platform::Result<void, std::string> RunWindow(const machine::Program& program,
                                              const std::vector<std::string>& arguments,
                                              const std::vector<std::string>& variables) {
  if (std::string_view(program.name) != machine::kPanel.name || arguments.empty()) {
    return platform::Failure(fmt::format("{} needs Linux", program.name));
  }
  const fs::path library =
      machine::Places(machine::FindOwnFile()).GetAppletFolder() / kAppletLibrary;
  std::error_code ignored;
  if (!fs::exists(library, ignored)) {
    return platform::Failure(
        fmt::format("{} is missing; it belongs in this program's folder", kAppletLibrary));
  }
  for (const std::string& variable : variables) {
    ::_putenv(variable.c_str());  // There is no second thread.
  }
  const auto ended = win32::RunInForeground(FindControlPanel(), {text::FromHostPath(library)});
  if (!ended) {
    return platform::Failure(std::string("the control panel cannot be started"));
  }
  return {};
}

std::string BecomeProgram(const machine::Program& program,
                          const std::vector<std::string>& /*arguments*/,
                          const std::vector<std::string>& /*variables*/) {
  return fmt::format("{} needs Linux", program.name);
}

// Windows keeps the list of its ports by itself, and the dialer's settings take any name.
void PublishPorts(platform::Registry& /*registry*/) {}

// A program that was started without streams has none, and nothing that is opened later takes their
// numbers.
void ReserveStandardStreams() {}

}  // namespace cli
