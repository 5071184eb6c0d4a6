#pragma once

// What the main function of a program with a command line needs, without the headers of commands.

namespace cli {

/// Exit codes of the program. 0 means done.
inline constexpr int kFailed = 1;
inline constexpr int kWrongUsage = 2;

/// Keeps files that are opened later from getting the numbers of closed standard streams: a message
/// would end up in a recording. A closed stream still takes no output. Called before anything is
/// opened.
void ReserveStandardStreams();

/// Runs one command line. Returns the exit code.
using CommandLine = int (*)(int argc, const char* const* argv);

/// Does the same. Lost output and a lack of memory are failures.
[[nodiscard]] int RunGuarded(int argc, const char* const* argv, CommandLine run);

/// Says on standard error that memory has run out. Takes no memory.
void PrintOutOfMemory();

}  // namespace cli
