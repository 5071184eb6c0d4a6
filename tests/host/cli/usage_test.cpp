#include "host/cli/usage.h"

#include <CLI/App.hpp>
#include <algorithm>

#include "host/cli/commands.h"
#include "tests/host/cli/command_fixture.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

using Command = std::vector<std::string>;

const std::vector<Command> kAllCommands{
    {"home"},
    {"open"},
    {"panel"},
    {"wave", "record"},
    {"wave", "play"},
    {"wave", "check"},
    {"template", "learn"},
    {"template", "process"},
    {"template", "show"},
    {"template", "compare"},
    {"language", "list"},
    {"language", "use"},
    {"language", "check"},
    {"language", "show"},
    {"language", "template"},
    {"microphone", "list"},
    {"microphone", "use"},
    {"registry", "export"},
    {"registry", "import"},
    {"contacts", "list"},
    {"tags", "learn"},
    {"tags", "test"},
    {"tags", "trash"},
    {"tags", "restore"},
    {"tags", "list"},
    {"tags", "play"},
    {"tags", "delete"},
    {"tags", "delete-all"},
    {"reinit"},
    {"check"},
    {"connection"},
    {"connection", "show"},
    {"connection", "set"},
    {"status"},
};

std::string NameOf(const Command& command) {
  return command.front() + (command.size() > 1 ? " " + command.back() : "");
}

class Help : public CommandFixture {
 protected:
  [[nodiscard]] std::string HelpOf(Command command) const {
    command.emplace_back("--help");
    const auto run = Run(command);
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.err, "");
    return run.out;
  }
  /// What the help has after the word "Examples:".
  [[nodiscard]] std::string ExamplesOf(const Command& command) const {
    const std::string help = HelpOf(command);
    const std::size_t begin = help.find("Examples:\n");
    return begin == std::string::npos ? "" : help.substr(begin);
  }
};

TEST_F(Help, OfEachCommandShowsItsUsageAndTheOptionsOfEveryCommand) {
  for (const Command& command : kAllCommands) {
    const std::string help = HelpOf(command);
    EXPECT_THAT(help, HasSubstr("Usage: voxtrel " + NameOf(command)));
    for (const char* option : {"--root DIR", "--contacts eds|PATH", "--microphone FILE",
                               "--speaker FILE", "--yes", "--json"}) {
      EXPECT_THAT(help, HasSubstr(std::string("\n  ") + option)) << NameOf(command);
    }
  }
}

TEST_F(Help, OfJsonSaysThatOneCommandPrintsMoreThanOneValue) {
  EXPECT_THAT(Run({"dial", "--help"}).out, HasSubstr("one for each step or file"));
}

TEST_F(Help, OfEachCommandHasExamplesOfItsOwnAndNoneOfAnother) {
  for (const Command& command : kAllCommands) {
    const std::string examples = ExamplesOf(command);
    EXPECT_THAT(examples, HasSubstr("voxtrel " + NameOf(command))) << NameOf(command);
    for (const Command& other : kAllCommands) {
      if (other.front() != command.front()) {
        EXPECT_THAT(examples, Not(HasSubstr("voxtrel " + NameOf(other)))) << NameOf(command);
      }
    }
  }
}

TEST_F(Help, OfAGroupListsItsCommands) {
  const std::string help = HelpOf({"tags"});
  for (const char* command : {"learn", "list", "test", "play", "delete", "trash", "restore"}) {
    EXPECT_THAT(help, HasSubstr(std::string("\n  ") + command + " "));
  }
  EXPECT_THAT(ExamplesOf({"tags"}), HasSubstr("voxtrel tags list"));
}

TEST_F(Help, OfTheProgramHasExamplesAndExitCodes) {
  EXPECT_THAT(ExamplesOf({}), HasSubstr("voxtrel tags learn --contact \"Lee Ann\""));
  EXPECT_THAT(ExamplesOf({}), HasSubstr("Exit codes: 0 done, 1 failed"));
  EXPECT_THAT(HelpOf({"status"}), Not(HasSubstr("Exit codes")));
}

using WrongUsage = CommandFixture;

TEST_F(WrongUsage, AMistypedCommandIsNamedWithTheNearestOne) {
  const auto run = Run({"tgas", "list"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err, "There is no command 'tgas'. Did you mean 'tags'?\n");
  EXPECT_EQ(Run({"tags", "lst"}).err,
            "There is no command 'tags lst'. Did you mean 'tags list'?\n");
  EXPECT_EQ(Run({"conn"}).err, "There is no command 'conn'. Did you mean 'connection'?\n");
  EXPECT_EQ(Run({"connection", "shwo"}).err,
            "There is no command 'connection shwo'. Did you mean 'connection show'?\n");
}

TEST_F(WrongUsage, ACommandOfAGroupIsFoundWithoutTheGroup) {
  EXPECT_EQ(Run({"learn", "--contact", "Ann"}).err,
            "There is no command 'learn'. Did you mean 'template learn' or 'tags learn'?\n");
}

TEST_F(WrongUsage, AWordThatIsLikeNoCommandIsNamed) {
  const auto run = Run({"gramophone"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.err, "There is no command 'gramophone'. `voxtrel --help` lists all.\n");
}

TEST_F(WrongUsage, AMistypedOptionIsNamedWithTheNearestOne) {
  EXPECT_EQ(Run({"tags", "list", "--jsno"}).err,
            "There is no option '--jsno' here. Did you mean '--json'?\n");
  EXPECT_EQ(Run({"tags", "learn", "--contact=Ann", "--numbr=Home"}).err,
            "There is no option '--numbr' here. Did you mean '--number'?\n");
  EXPECT_EQ(Run({"tags", "list", "--zebra"}).err,
            "There is no option '--zebra' here. `voxtrel tags list --help` lists all.\n");
}

TEST_F(WrongUsage, IsAnErrorInJson) {
  const auto run = Run({"--json", "tgas"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(
      json::parse(run.out, nullptr, false),
      (json{{"error",
             {{"code", 2}, {"message", "There is no command 'tgas'. Did you mean 'tags'?"}}}}));
  const auto missing = Run({"tags", "learn", "--json"});
  EXPECT_EQ(missing.exitCode, 2);
  EXPECT_EQ(json::parse(missing.out, nullptr, false),
            (json{{"error", {{"code", 2}, {"message", "--contact is required"}}}}));
  EXPECT_THAT(missing.err, StartsWith("--contact is required\n"));
}

TEST(CommandGroups, AreKnownByTheNamesOfTheirCommands) {
  cli::Options options;
  for (const cli::CommandGroup& group : cli::kCommandGroups) {
    CLI::App app;
    cli::PrepareUsage(app, options);
    cli::Session session(options);
    group.add(app, session);
    std::vector<std::string_view> names;
    for (const CLI::App* command : app.get_subcommands({})) {
      names.push_back(command->get_name());
    }
    EXPECT_EQ(names, group.names);
  }
}

TEST(FindNearest, TakesSwappedMissingWrongAndAddedLettersForOneTypoEach) {
  const std::vector<std::string> names{"record", "restore", "reinit"};
  for (const char* word : {"rceord", "recrd", "recard", "reccord"}) {
    EXPECT_EQ(cli::FindNearest(word, names), "record") << word;
  }
  EXPECT_EQ(cli::FindNearest("rest", names), "restore") << "The beginning of it.";
}

TEST(FindNearest, GuessesNothingFromAWordThatIsTooDifferent) {
  EXPECT_EQ(cli::FindNearest("x", {"tags", "wave"}), "");
  EXPECT_EQ(cli::FindNearest("", {"tags"}), "");
  EXPECT_EQ(cli::FindNearest("waveform", {"tags", "wave"}), "");
  EXPECT_EQ(cli::FindNearest("tags", {}), "");
}

}  // namespace
