#include "host/cli/command_line.h"

#include <CLI/CLI.hpp>
#include <exception>
#include <new>

#include "host/cli/commands.h"
#include "host/cli/output.h"
#include "host/cli/session.h"
#include "host/cli/system.h"
#include "host/cli/usage.h"

namespace cli {
namespace {

/// Runs one command line. Returns the exit code of the program.
int RunCommand(int argc, const char* const* argv) {
  CLI::App app("Voice tags for a speaker-dependent dialer: record, learn, play, compare.",
               "voxtrel");
  Options options;
  PrepareUsage(app, options);
  // The session reads the options when a command asks for something, which is after they were
  // parsed.
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
  AddBackupCommands(app, session);
  AddStatusCommands(app, session);
  AddExamples(app);

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
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

/// The same. Lost output is a failure.
int RunAndFlush(int argc, const char* const* argv) {
  const int exitCode = RunCommand(argc, argv);
  if (FlushOutput()) {
    return exitCode;
  }
  PrintErrorLine("voxtrel: not all of the output could be written to standard output");
  return exitCode == 0 ? kFailed : exitCode;
}

}  // namespace

int RunCommandLine(int argc, const char* const* argv) {
  try {
    return RunAndFlush(argc, argv);
  } catch (const std::bad_alloc&) {
    PrintOutOfMemory();
  }
  return kFailed;
}

void PrintOutOfMemory() { WriteError("voxtrel: there is not enough memory\n"); }

}  // namespace cli
