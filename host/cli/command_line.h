#pragma once

namespace cli {

/// The exit code of a command that did not do its work.
inline constexpr int kFailed = 1;

/// Runs one command line. Returns the exit code of the program: 0 done, 1 failed with a message on
/// standard error, 2 wrong usage.
[[nodiscard]] int RunCommandLine(int argc, const char* const* argv);

}  // namespace cli
