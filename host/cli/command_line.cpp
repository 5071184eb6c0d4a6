#include "host/cli/command_line.h"

#include <CLI/CLI.hpp>

#include "host/cli/commands.h"
#include "host/cli/session.h"
#include "host/cli/usage.h"

namespace cli {

int RunCommandLine(int argc, const char* const* argv) {
  CLI::App app("Voice tags for a speaker-dependent dialer: record, learn, play, compare.",
               "voxtrel");
  Options options;
  PrepareUsage(app, options);
  Session session(options);
  AddWindowCommands(app, session);
  AddWaveCommands(app, session);
  AddTemplateCommands(app, session);
  AddLanguageCommands(app, session);
  AddRegistryCommands(app, session);
  AddContactsCommands(app, session);
  AddTagsCommands(app, session);
  AddMaintenanceCommands(app, session);
  AddMicrophoneCommands(app, session);
  AddConnectionCommands(app, session);
  AddDialCommand(app, session);
  AddBackupCommands(app, session);
  AddStatusCommands(app, session);
  AddExamples(app);
  return ParseAndRun(app, session, argc, argv);
}

}  // namespace cli
