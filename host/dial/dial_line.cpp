#include "host/dial/commands.h"

#include <CLI/CLI.hpp>

#include "host/cli/dial_options.h"
#include "host/cli/session.h"
#include "host/cli/usage.h"

namespace dial {
namespace {

constexpr const char* kFooter =
    "Examples:\n"
    "  voxtrel-dial                                     say a name, and call that person\n"
    "  voxtrel-dial --to \"Lee Ann\" --number Mobile      call without saying the name\n"
    "\n"
    "Exit codes: 0 the call was handed over or answered, 1 it was not, with a message on standard "
    "error, 2 wrong usage.";

/// At most one of these options is given, since they exclude each other.
void RunDial(cli::Session& session, const cli::DialOptions& options) {
  if (!options.recognize.empty()) {
    RecognizeFiles(session, options);
  } else if (!options.evaluate.empty()) {
    Evaluate(session, options);
  } else if (options.hangUp) {
    HangUp(session, options);
  } else if (!options.to.empty()) {
    CallContact(session, options);
  } else {
    HearAndCall(session, options);
  }
}

}  // namespace

int RunDialLine(int argc, const char* const* argv) {
  CLI::App app("Hears a name that was taught, and calls that person.", "voxtrel-dial");
  cli::Options shared;
  cli::PrepareUsage(app, shared);
  app.footer(kFooter);
  cli::Session session(shared);
  cli::DialOptions options;
  const cli::DialCommands commands = cli::AddDialOptions(app, options);
  commands.listWays->callback([&session, &options] { ListWays(session, options); });
  commands.useWay->callback([&session, &options] { UseWay(session, options); });
  // A subcommand has been run by then. Without one the options say what is to be done.
  app.final_callback([&app, &session, &options] {
    if (app.get_subcommands().empty()) {
      RunDial(session, options);
    }
  });
  return cli::ParseAndRun(app, session, argc, argv);
}

}  // namespace dial
