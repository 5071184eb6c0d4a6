#pragma once

#include <CLI/App.hpp>
#include <functional>
#include <string>
#include <vector>

#include "host/cli/session.h"

namespace cli {

// What the command line says about itself: its options, the help of each command, and what is wrong
// with a line.

/// Gives `app` the options of every command, which `options` gets, and the form of its help. Called
/// before the commands are added, since each takes the form from its parent.
void PrepareUsage(CLI::App& app, Options& options);

/// Gives each command the examples that its help ends with. Called after the commands were added.
void AddExamples(CLI::App& app);

/// Runs the command of a line, and prints what it has for `session`. Prints the help, the version,
/// or what is wrong with the line. Returns the exit code. If `otherwise` is given, `app` may lack
/// commands: a line that names no command of it, is not understood or asks for help is left to
/// `otherwise`, before anything was run or printed.
using RunOtherwise = std::function<int()>;
[[nodiscard]] int ParseAndRun(CLI::App& app, Session& session, int argc, const char* const* argv,
                              const RunOtherwise& otherwise = {});

/// Returns the name among `names` that is most like `word`, if it is so much alike that somebody
/// may have meant it: few letters are wrong, missing, too many or swapped with their neighbour, or
/// it is the beginning of the name. Returns an empty text if there is none.
[[nodiscard]] std::string FindNearest(const std::string& word,
                                      const std::vector<std::string>& names);

}  // namespace cli
