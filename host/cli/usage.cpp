#include "host/cli/usage.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstddef>
#include <exception>
#include <memory>
#include <new>
#include <numeric>
#include <sstream>
#include <string_view>

#include "host/cli/output.h"

// Help, examples, and what was meant by a wrong word. The parser's library does the parsing. Its
// own messages about a wrong word name no remedy, so this looks for the nearest command or option.
namespace cli {
namespace {

struct Example {
  std::string_view command;  ///< Without the program's name: "tags learn".
  std::string_view line;     ///< What stands after the program's name.
  std::string_view meaning;
};

constexpr Example kExamples[] = {
    {"home", "home", "the window where you do all of this by clicks"},
    {"home", "home --teach", "teach a name at once"},
    {"open", "open", "the settings sheet, without the control panel"},
    {"panel", "panel", "the control panel with the applet's icon"},
    {"wave", "wave record ann.wav", "say a name within three seconds"},
    {"wave record", "wave record ann.wav", "say a name within three seconds"},
    {"wave record", "wave record - --milliseconds 5000 | sox - ann.flac",
     "five seconds, to a program"},
    {"wave play", "wave play ann.wav", "hear it"},
    {"wave check", "wave check ann.wav", "can this file be learned?"},
    {"wave check", "sox ann.flac -t wav - | voxtrel wave check -",
     "can the output of a program be learned?"},
    {"template", "template learn ann.wav ann.st", "find the speech, trim the file to it"},
    {"template learn", "template learn ann.wav ann.st", "find the speech, trim the file to it"},
    {"template learn", "template learn ann.wav ann.st --keep whole.wav",
     "and keep the whole recording"},
    {"template process", "template process ann.wav ann.st",
     "the template of all that is in the file"},
    {"template show", "template show ann.st", "the five frequency bands as a picture"},
    {"template compare", "template compare ann.st bob.st", "how alike two names sound"},
    {"language", "language use de", "the settings sheet in German"},
    {"language list", "language list", "the languages there are"},
    {"language use", "language use de", "the settings sheet in German"},
    {"language use", "language use en", "back to English"},
    {"language check", "language check Voxtrel.lng", "what a translator should mend"},
    {"language show", "language show Voxtrel.lng", "the texts that the windows would show"},
    {"language template", "language template Voxtrel.lng", "a file to begin a translation with"},
    {"microphone", "microphone list", "what can be recorded from"},
    {"microphone list", "microphone list", "what can be recorded from"},
    {"microphone use", "microphone use default", "leave the choice to the desktop"},
    {"registry", "registry export tags.reg", "take the settings to a Windows machine"},
    {"registry export", "registry export tags.reg", "take the settings to a Windows machine"},
    {"registry export", "registry export - | iconv -f utf-16", "read them here"},
    {"registry import", "registry import tags.reg", "bring them back"},
    {"contacts", "--contacts all.vcf contacts list", "who can have a voice tag"},
    {"contacts list", "contacts list", "the contacts that were used last"},
    {"contacts list", "contacts list --contacts all.vcf", "those of a vCard file"},
    {"tags", "tags list", "the voice tags there are"},
    {"tags learn", "tags learn --contact \"Lee Ann\" --number Mobile",
     "say the name when you are asked"},
    {"tags learn", "tags learn --contact 3", "the third contact of `contacts list`"},
    {"tags test", "tags test", "which voice tags sound too much alike"},
    {"tags trash", "tags trash", "what was deleted, and when"},
    {"tags restore", "tags restore --last", "bring back what was deleted last"},
    {"tags restore", "tags restore 284004", "bring back one voice tag by its name"},
    {"tags list", "tags list --json", "the voice tags there are, for a script"},
    {"tags play", "tags play 284004", "hear the voice tag of that name"},
    {"tags delete", "tags delete 284004 --yes", "delete it without a question"},
    {"tags delete-all", "tags delete-all", "delete all voice tags, after a question"},
    {"reinit", "reinit --force", "make every template again"},
    {"check", "check", "is anything wrong with the voice tags?"},
    {"check", "check --repair", "mend what can be mended"},
    {"dial", "dial", "say a name, and call that person"},
    {"dial", "dial --to \"Lee Ann\" --number Mobile", "call without saying the name"},
    {"dial way", "dial way use serial", "call through the modem"},
    {"dial way list", "dial way list", "the ways to call"},
    {"dial way use", "dial way use serial", "call through the modem"},
    {"dial way use", "dial way use default", "the first way that works"},
    {"connection", "connection", "the dialer's serial port, in a window"},
    {"connection show", "connection show", "the settings of the dialer's serial port"},
    {"connection set", "connection set port=COM1: baud-rate=115200", "change two of them"},
    {"backup", "backup voice-tags.tar", "keep all of it in one file"},
    {"backup", "backup - | ssh desk 'cat > voice-tags.tar'", "on another machine"},
    {"restore", "restore voice-tags.tar", "what is missing comes back"},
    {"restore", "restore voice-tags.tar --yes", "what differs is replaced, too"},
    {"status", "status", "what is missing on this machine"},
};

/// The examples of the program's own help: one for each thing that people do.
constexpr std::string_view kFirstSteps[] = {"home",           "wave record",    "wave play",
                                            "template learn", "template show",  "template compare",
                                            "language check", "contacts",       "tags learn",
                                            "tags list",      "tags test",      "dial",
                                            "check",          "connection set", "status",
                                            "backup",         "registry export"};

constexpr const char* kExitCodes =
    "Exit codes: 0 done, 1 failed with a message on standard error, 2 wrong usage.";

std::string LinesOf(const std::vector<const Example*>& examples) {
  constexpr std::size_t kColumn = 50;
  std::string lines = "Examples:";
  for (const Example* example : examples) {
    // If a program feeds the command, the line begins with that program.
    const bool isWhole = example->line.find("voxtrel ") != std::string_view::npos;
    std::string line = fmt::format("  {}{}", isWhole ? "" : "voxtrel ", example->line);
    line += line.size() < kColumn ? std::string(kColumn - line.size(), ' ')
                                  : "\n" + std::string(kColumn, ' ');
    lines += "\n" + line + std::string(example->meaning);
  }
  return lines;
}

/// "tags learn" for that command; empty for the program.
std::string NameOf(const CLI::App& command) {
  const CLI::App* parent = command.get_parent();
  if (parent == nullptr) {
    return {};
  }
  const std::string before = NameOf(*parent);
  return before.empty() ? command.get_name() : before + " " + command.get_name();
}

const CLI::App& RootOf(const CLI::App& command) {
  return command.get_parent() == nullptr ? command : RootOf(*command.get_parent());
}

/// The library's help, with two differences: the help of a command also has the options of every
/// command, and nothing says how many of the listed commands are wanted, since that is one.
class HelpFormatter final : public CLI::Formatter {
 public:
  std::string make_description(const CLI::App* app) const override {
    return app->get_description() + "\n";
  }

  std::string make_footer(const CLI::App* app) const override {
    std::string footer = CLI::Formatter::make_footer(app);
    if (app->get_parent() == nullptr) {
      return footer;
    }
    const CLI::App& root = RootOf(*app);
    const auto isShared = [&root](const CLI::Option* option) {
      return option != root.get_help_ptr() && option != root.get_version_ptr();
    };
    // The library begins a group with an empty line, and there is one before the footer too.
    const std::string shared =
        make_group("Options of every command", false, root.get_options(isShared));
    return shared.substr(1) + "\n" + footer;
  }
};

/// Counts the letters that are wrong, missing, too many or swapped with their neighbour: the
/// distance of optimal string alignment. A row of the table needs the two rows before it.
std::size_t CountTypos(std::string_view a, std::string_view b) {
  std::vector<std::size_t> beforeLast;
  std::vector<std::size_t> last(b.size() + 1);
  std::iota(last.begin(), last.end(), std::size_t{0});
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::vector<std::size_t> row(b.size() + 1, i);
    for (std::size_t j = 1; j <= b.size(); ++j) {
      // Of the first i letters of a and j of b: one letter is another one, one is missing, or one
      // is too many. The cheapest of the three counts.
      const std::size_t changed = last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
      row[j] = std::min({changed, last[j] + 1, row[j - 1] + 1});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
        row[j] = std::min(row[j], beforeLast[j - 2] + 1);
      }
    }
    beforeLast = std::move(last);
    last = std::move(row);
  }
  return last.back();
}

std::vector<std::string> NamesOfCommands(const CLI::App& group) {
  std::vector<std::string> names;
  for (const CLI::App* command : group.get_subcommands({})) {
    names.push_back(command->get_name());
  }
  return names;
}

std::vector<std::string> NamesOfOptions(const CLI::App& command) {
  std::vector<std::string> names;
  for (const CLI::App* app = &command; app != nullptr; app = app->get_parent()) {
    for (const CLI::Option* option : app->get_options()) {
      for (const std::string& name : option->get_lnames()) {
        names.push_back("--" + name);
      }
    }
  }
  return names;
}

/// Returns the names of all commands of a group of commands whose own name is `word`.
std::string FindElsewhere(const CLI::App& app, const std::string& word) {
  std::string found;
  for (const CLI::App* group : app.get_subcommands({})) {
    for (const CLI::App* command : group->get_subcommands({})) {
      if (command->get_name() == word) {
        found += (found.empty() ? "'" : " or '") + NameOf(*command) + "'";
      }
    }
  }
  return found;
}

/// Returns the words by which a user starts the command, "voxtrel tags learn".
std::string LineOf(const CLI::App& command) {
  const std::string name = NameOf(command);
  return RootOf(command).get_name() + (name.empty() ? "" : " " + name);
}

std::string Ask(const CLI::App& app, const std::string& meant) {
  return meant.empty() ? fmt::format("`{} --help` lists all.", RootOf(app).get_name())
                       : "Did you mean " + meant + "?";
}

/// Says which word of the line is no command or no option, and what may have been meant. Returns an
/// empty text if that is not what is wrong.
std::string ExplainUnknownWord(const CLI::App& app) {
  const std::vector<std::string> left = app.remaining(true);
  const CLI::App* command = &app;
  while (!command->get_subcommands().empty()) {
    command = command->get_subcommands().back();
  }
  // All words were understood, so something else is wrong.
  if (left.empty()) {
    return {};
  }
  const std::string& word = left.front();
  if (word.starts_with("--")) {
    const std::string name = word.substr(0, word.find('='));
    const std::string nearest = FindNearest(name, NamesOfOptions(*command));
    return fmt::format("There is no option '{}' here. {}", name,
                       nearest.empty() ? fmt::format("`{} --help` lists all.", LineOf(*command))
                                       : Ask(app, "'" + nearest + "'"));
  }
  if (word.starts_with('-') || command->get_subcommands({}).empty()) {
    return {};
  }
  const std::string before = command == &app ? "" : NameOf(*command) + " ";
  const std::string nearest = FindNearest(word, NamesOfCommands(*command));
  const std::string meant =
      nearest.empty() ? FindElsewhere(app, word) : "'" + before + nearest + "'";
  return fmt::format("There is no command '{}{}'. {}", before, word, Ask(app, meant));
}

void PrintWithout(std::string text, char last, void (*printLine)(std::string_view)) {
  if (text.ends_with(last)) {
    text.pop_back();
  }
  if (!text.empty()) {
    printLine(text);
  }
}

/// Prints the help, the version, or what is wrong with the line. Returns the exit code.
int ExplainUsage(const CLI::App& app, const CLI::ParseError& error,
                 const std::vector<std::string>& arguments) {
  std::ostringstream output;
  std::ostringstream errors;
  if (app.exit(error, output, errors) == 0) {
    PrintWithout(output.str(), '\n', PrintLine);
    return 0;
  }
  const std::string unknown = ExplainUnknownWord(app);
  PrintWithout(unknown.empty() ? errors.str() : unknown, '\n', PrintErrorLine);
  // The line was not understood, so the option was not taken either.
  if (std::ranges::find(arguments, "--json") != arguments.end()) {
    PrintJson(ErrorToJson(kWrongUsage, unknown.empty() ? error.what() : unknown));
  }
  return kWrongUsage;
}

}  // namespace

void PrepareUsage(CLI::App& app, Options& options) {
  app.formatter(std::make_shared<HelpFormatter>());
  app.require_subcommand(0, 1);  // Without one the window opens if there is a display.
  app.fallthrough();
  app.allow_windows_style_options(false);  // "/home/ann.wav" is a file on every system.
  app.set_version_flag("--version", app.get_name() + " " VOXTREL_VERSION);
  app.add_option("--root", options.machine.root,
                 "Folder of the voice tags and settings (default: voxtrel in the XDG data folder)")
      ->type_name("DIR")
      ->envname("VOXTREL_ROOT");
  app.add_option("--microphone", options.machine.microphone,
                 "Record from this wave file (11,025 Hz, mono, 16 bit) and not from the microphone")
      ->type_name("FILE")
      ->envname("VOXTREL_MICROPHONE");
  app.add_option(
         "--speaker", options.machine.speaker,
         "Play into this wave file, which replaces an earlier one, and not to the loudspeaker")
      ->type_name("FILE")
      ->envname("VOXTREL_SPEAKER");
  app.add_option("--contacts", options.machine.contacts,
                 "Address book to use: eds for the desktop's, or a vCard file, or a folder of them "
                 "(default: the last one, else the desktop's, else contacts.vcf in the root "
                 "folder). Commands that may change something remember it")
      ->type_name("eds|PATH")
      ->envname("VOXTREL_CONTACTS");
  app.add_flag("--yes", options.yes, "Answer every confirmation with OK");
  app.add_flag("--json", options.json,
               "Print one JSON value on standard output (dial: one for each step or file)");
}

void AddExamples(CLI::App& app) {
  for (CLI::App* command : app.get_subcommands({})) {
    AddExamples(*command);
  }
  std::vector<const Example*> examples;
  for (const Example& example : kExamples) {
    if (example.command == NameOf(app)) {
      examples.push_back(&example);
    }
  }
  if (app.get_parent() != nullptr) {
    app.footer(LinesOf(examples));
    return;
  }
  for (const std::string_view command : kFirstSteps) {
    examples.push_back(std::ranges::find(kExamples, command, &Example::command));
  }
  app.footer(LinesOf(examples) + "\n\n" + kExitCodes);
}

int ParseAndRun(CLI::App& app, Session& session, int argc, const char* const* argv,
                const RunOtherwise& otherwise) {
  // Called before the command, which may find the usage wrong by itself.
  bool isUnderstood = false;
  app.parse_complete_callback([&] { isUnderstood = true; });
  try {
    app.parse(argc, argv);
    if (otherwise && app.get_subcommands().empty()) {
      return otherwise();
    }
  } catch (const CLI::ParseError& error) {
    if (otherwise && !isUnderstood && error.get_name() != "CallForVersion") {
      return otherwise();
    }
    return ExplainUsage(app, error, {argv, argv + argc});
  } catch (const std::bad_alloc&) {
    throw;  // A message here would take memory.
  } catch (const std::exception& error) {
    // Nothing of the system throws; a library that ran out of something does.
    session.Fail(error.what());
  }
  // After every command, whatever became of it: the JSON value is whole only now.
  session.PrintOutcome();
  return session.GetExitCode();
}

std::string FindNearest(const std::string& word, const std::vector<std::string>& names) {
  constexpr std::size_t kLettersOfATypo = 3;
  constexpr std::size_t kShortestBeginning = 3;
  std::size_t fewest = std::max<std::size_t>(word.size() / kLettersOfATypo, 1) + 1;
  std::string nearest;
  for (const std::string& name : names) {
    // A beginning, such as "comp", is as good as one typing error.
    const bool isBeginning = word.size() >= kShortestBeginning && name.starts_with(word);
    const std::size_t typos = isBeginning ? 1 : CountTypos(word, name);
    if (typos < fewest && typos < name.size()) {
      fewest = typos;
      nearest = name;
    }
  }
  return nearest;
}

}  // namespace cli
