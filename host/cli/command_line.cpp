#include "host/cli/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <span>

#include "host/cli/commands.h"
#include "host/cli/session.h"
#include "host/cli/usage.h"

namespace cli {

const std::array<CommandGroup, 13> kCommandGroups{{{{"home", "open", "panel"}, AddWindowCommands},
                                                   {{"wave"}, AddWaveCommands},
                                                   {{"template"}, AddTemplateCommands},
                                                   {{"language"}, AddLanguageCommands},
                                                   {{"registry"}, AddRegistryCommands},
                                                   {{"contacts"}, AddContactsCommands},
                                                   {{"tags"}, AddTagsCommands},
                                                   {{"reinit", "check"}, AddMaintenanceCommands},
                                                   {{"microphone"}, AddMicrophoneCommands},
                                                   {{"connection"}, AddConnectionCommands},
                                                   {{"dial"}, AddDialCommand},
                                                   {{"backup", "restore"}, AddBackupCommands},
                                                   {{"status"}, AddStatusCommands}}};

namespace {

/// One command line, with the commands that it may be about.
class Line {
 public:
  Line() { PrepareUsage(m_app, m_options); }

  void Add(const CommandGroup& group) { group.add(m_app, m_session); }
  void AddExamples() { cli::AddExamples(m_app); }

  [[nodiscard]] int Run(int argc, const char* const* argv, const RunOtherwise& otherwise = {}) {
    return ParseAndRun(m_app, m_session, argc, argv, otherwise);
  }

 private:
  CLI::App m_app{"Voice tags for a speaker-dependent dialer: record, learn, play, compare.",
                 "voxtrel"};
  Options m_options;
  Session m_session{m_options};
};

int RunWithAllCommands(int argc, const char* const* argv) {
  Line line;
  std::ranges::for_each(kCommandGroups, [&](const CommandGroup& group) { line.Add(group); });
  line.AddExamples();
  return line.Run(argc, argv);
}

}  // namespace

// To make all commands takes longer than most of them run. So those are made that the line names,
// and all of them only if that line is not understood or asks for help.
int RunCommandLine(int argc, const char* const* argv) {
  const std::span words(argv, static_cast<std::size_t>(argc));
  Line line;
  for (const CommandGroup& group : kCommandGroups) {
    if (std::ranges::find_first_of(words, group.names) != words.end()) {
      line.Add(group);
    }
  }
  return line.Run(argc, argv, [&] { return RunWithAllCommands(argc, argv); });
}

}  // namespace cli
