#pragma once

// NOLINTNEXTLINE(readability-identifier-naming): the name is the library's.
namespace CLI {
class App;
class ParseError;
}  // namespace CLI

namespace machine {

/// Prints the help, the version, or what is wrong with the command line of a program that has
/// windows. Returns its exit code: 0 for the first two, else 2. The library quotes arguments as
/// they are, so what is printed is made safe for a terminal.
[[nodiscard]] int ExplainUsage(const CLI::App& app, const CLI::ParseError& error);

}  // namespace machine
