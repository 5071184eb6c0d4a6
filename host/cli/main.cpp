#include <unistd.h>

#include <CLI/CLI.hpp>
#include <clocale>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <new>

#include "host/cli/commands.h"
#include "host/cli/output.h"
#include "host/cli/session.h"
#include "host/cli/usage.h"

namespace {

/// Called if memory runs out and nothing can catch it: in a thread, in a destructor, or before
/// `main`. What was written until then is as after a kill, which every command allows for.
[[noreturn]] void EndWithoutMemory() {
  try {
    if (std::current_exception()) {
      throw;
    }
  } catch (const std::bad_alloc&) {
    cli::PrintOutOfMemory();
    ::_exit(cli::kFailed);
  } catch (...) {
  }
  std::abort();
}

/// The sound server's library writes a message and raises SIGQUIT if memory runs out. A SIGQUIT
/// from anywhere else, as from a terminal, ends the process as it always does.
void EndByLibrary(int signal, siginfo_t* info, void* /*context*/) {
  if (info->si_code == SI_TKILL && info->si_pid == ::getpid()) {
    ::_exit(cli::kFailed);
  }
  static_cast<void>(std::signal(signal, SIG_DFL));
  static_cast<void>(std::raise(signal));
}

void WatchForEndByLibrary() {
  struct sigaction action {};
  action.sa_sigaction = EndByLibrary;
  action.sa_flags = SA_SIGINFO;
  ::sigaction(SIGQUIT, &action, nullptr);
}

struct TerminateHandler {
  TerminateHandler() noexcept { std::set_terminate(EndWithoutMemory); }
};

/// Made before the texts of libraries.
constexpr int kFirstPriority = 101;
[[gnu::init_priority(kFirstPriority)]] const TerminateHandler kHandler;

/// Runs one command line. Returns the exit code of the program.
int RunCommand(int argc, const char* const* argv) {
  CLI::App app("Voice tags for a speaker-dependent dialer: record, learn, play, compare.",
               "voxtrel");
  cli::Options options;
  cli::PrepareUsage(app, options);
  cli::Session session(options);
  cli::AddWindowCommands(app, session);
  cli::AddWaveCommands(app, session);
  cli::AddTemplateCommands(app, session);
  cli::AddLanguageCommands(app, session);
  cli::AddRegistryCommands(app, session);
  cli::AddContactsCommands(app, session);
  cli::AddTagsCommands(app, session);
  cli::AddMaintenanceCommands(app, session);
  cli::AddConnectionCommands(app, session);
  cli::AddBackupCommands(app, session);
  cli::AddStatusCommands(app, session);
  cli::AddExamples(app);

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return cli::ExplainUsage(app, error, {argv, argv + argc});
  } catch (const std::bad_alloc&) {
    throw;  // A message here would take memory.
  } catch (const std::exception& error) {
    // Nothing of the system throws; a library that ran out of something does.
    session.Fail(error.what());
  }
  session.PrintOutcome();
  return session.GetExitCode();
}

/// The same. Lost output is a failure.
int RunAndFlush(int argc, const char* const* argv) {
  const int exitCode = RunCommand(argc, argv);
  if (cli::FlushOutput()) {
    return exitCode;
  }
  cli::PrintErrorLine("voxtrel: not all of the output could be written to standard output");
  return exitCode == 0 ? cli::kFailed : exitCode;
}

}  // namespace

int main(int argc, char** argv) {
  cli::ReserveStandardStreams();
  WatchForEndByLibrary();
  // Only the character set, so that pictures fit the terminal; numbers keep their decimal point.
  std::setlocale(LC_CTYPE, "");
  try {
    return RunAndFlush(argc, argv);
  } catch (const std::bad_alloc&) {
    cli::PrintOutOfMemory();
  }
  return cli::kFailed;
}
