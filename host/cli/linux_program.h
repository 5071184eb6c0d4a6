#pragma once

#include "host/cli/program.h"

namespace cli {

/// What the main function of a program does on Linux. Returns the exit code of the program. A lack
/// of memory is a failure, also one that nothing catches.
[[nodiscard]] int RunProgram(int argc, const char* const* argv, CommandLine run);

}  // namespace cli
