#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/process.h"
#include "platform/result.h"

namespace win32 {

/// The process of the program itself, which really ends: the call does not return.
class Win32Process final : public platform::Process {
 public:
  /// Flushes standard output and standard error. Nothing else is done, since other threads may
  /// still run: no destructors of static objects, no exit handlers.
  void End(int exitCode) override;
};

/// Runs a program with the standard streams of this one, and returns its exit code when it has
/// ended. `arguments` are UTF-8. Fails with an error of the system if it cannot be started.
[[nodiscard]] platform::Result<std::uint32_t, std::uint32_t> RunInForeground(
    const std::filesystem::path& program, const std::vector<std::string>& arguments);

/// Returns the command line from which a program reads `words` again.
[[nodiscard]] std::u16string JoinCommandLine(const std::vector<std::u16string>& words);

}  // namespace win32
