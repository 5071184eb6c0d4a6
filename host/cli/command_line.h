#pragma once

namespace cli {

/// Runs one command line of `voxtrel`. Returns the exit code of the program.
[[nodiscard]] int RunCommandLine(int argc, const char* const* argv);

}  // namespace cli
