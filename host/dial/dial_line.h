#pragma once

namespace dial {

/// Runs one command line of `voxtrel-dial`. Returns the exit code of the program.
[[nodiscard]] int RunDialLine(int argc, const char* const* argv);

}  // namespace dial
