#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

#include "host/cli/commands.h"
#include "host/cli/dial_options.h"
#include "host/cli/system.h"
#include "host/machine/places.h"

namespace cli {
namespace {

/// Appends what was given to a command, and the subcommand that was, as words of a line.
void AppendWords(const CLI::App& command, std::vector<std::string>& words) {
  for (const CLI::Option* option : command.get_options()) {
    // One word with its value, which may itself begin with a dash.
    const std::string start = option->get_positional() ? std::string() : option->get_name() + "=";
    for (const std::string& value : option->results()) {
      words.push_back(start + value);
    }
  }
  for (const CLI::App* subcommand : command.get_subcommands()) {
    words.push_back(subcommand->get_name());
    AppendWords(*subcommand, words);
  }
}

}  // namespace

// The dialer is a program of its own, which needs neither the Learning page nor its window. It
// takes the place of this one, so that keys, signals and the exit code are its own.
void AddDialCommand(CLI::App& app, Session& session) {
  CLI::App* const dial = app.add_subcommand("dial", "Say a name, and call that person");
  const auto options = std::make_shared<DialOptions>();
  AddDialOptions(*dial, *options);
  dial->callback([&session, dial, options] {
    std::vector<std::string> words;
    AppendWords(*dial, words);
    if (session.GetOptions().yes) {
      words.emplace_back("--yes");
    }
    if (session.GetOptions().json) {
      words.emplace_back("--json");
    }
    session.Fail(BecomeProgram(machine::kDialer, words, VariablesOf(session)));
  });
}

}  // namespace cli
