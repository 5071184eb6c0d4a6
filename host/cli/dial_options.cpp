#include "host/cli/dial_options.h"

#include <CLI/CLI.hpp>

#include "backends/text/utf.h"
#include "dialer/ways.h"

namespace cli {
namespace {

/// Takes a choice back.
constexpr const char* kDefaultWay = "default";

std::vector<std::string> WaysAnd(std::vector<std::string> words) {
  for (const dialer::WayWord& way : dialer::kWays) {
    words.push_back(text::ToUtf8(way.word));
  }
  return words;
}

/// An empty text would count as if the option was not there, and a name would be heard.
std::string RefuseEmpty(const std::string& text) {
  return text.empty() ? "it may not be empty" : std::string();
}

}  // namespace

DialCommands AddDialOptions(CLI::App& command, DialOptions& options) {
  command.require_subcommand(0, 1);
  CLI::Option* const to =
      command
          .add_option("--to", options.to,
                      "Call this contact and hear no name: its name, or its number in "
                      "`voxtrel contacts list`")
          ->type_name("CONTACT")
          ->check(RefuseEmpty);
  command
      .add_option("--number", options.number,
                  "With --to: which number, such as Mobile or Home (default: the first)")
      ->type_name("KIND")
      ->needs(to);
  command
      .add_option("--way", options.way,
                  "How to call: tel (the desktop's telephone program), serial (a modem) or print "
                  "(only show the number). Default: the one of `voxtrel dial way use`")
      ->type_name("WAY")
      ->check(CLI::IsMember(WaysAnd({})).description(""));
  command
      .add_option("--modem", options.modem,
                  "Call through this serial device, with the settings of `voxtrel connection`")
      ->type_name("FILE")
      ->envname("VOXTREL_MODEM");
  CLI::Option* const hangUp = command.add_flag(
      "--hang-up", options.hangUp, "Call nobody: end the call of the modem, if it has one");
  CLI::Option* const recognize =
      command
          .add_option("--recognize", options.recognize,
                      "Call nobody: say who is meant in each of these recordings")
          ->type_name("FILE")
          ->excludes(to);
  CLI::Option* const evaluate =
      command
          .add_option("--evaluate", options.evaluate,
                      "Call nobody: measure how surely the names of this folder are known, files "
                      "LABEL_SPEAKER_TAKE.wav")
          ->type_name("FOLDER")
          ->check(RefuseEmpty)
          ->excludes(to)
          ->excludes(recognize);
  hangUp->excludes(to)->excludes(recognize)->excludes(evaluate);
  command
      .add_option("--takes", options.takes,
                  "With --evaluate: how many takes of a name are taught (default: 1)")
      ->type_name("NUMBER")
      ->check(CLI::Range(1, 100).description(""))
      ->needs(evaluate);
  command.add_flag("--quick", options.quick,
                   "Compare templates only, as on a slow processor, and not the recordings");

  CLI::App* const way = command.add_subcommand("way", "List and choose how to call");
  way->require_subcommand(1);
  CLI::App* const list =
      way->add_subcommand("list", "List the ways to call; a star marks the one that is taken");
  CLI::App* const use = way->add_subcommand("use", "Choose how to call");
  use->add_option("name", options.chosenWay,
                  "tel, serial or print; default: the first of them that works")
      ->required()
      ->check(CLI::IsMember(WaysAnd({kDefaultWay})).description(""));
  return {list, use};
}

}  // namespace cli
