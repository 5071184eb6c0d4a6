#include "host/cli/command_line.h"

#include <CLI/CLI.hpp>
#include <exception>

#include "host/cli/language_commands.h"
#include "host/cli/output.h"
#include "host/cli/session.h"
#include "host/cli/template_commands.h"
#include "host/cli/wave_commands.h"

namespace cli {
namespace {

constexpr int kWrongUsage = 2;

constexpr const char* kFooter = R"(Examples:
  voxtrel wave record ann.wav                 say a name within three seconds
  voxtrel wave play ann.wav                   hear it
  voxtrel template learn ann.wav ann.st       find the speech, trim the file to it
  voxtrel template show ann.st                look at the template
  voxtrel template compare ann.st bob.st      how alike two names sound
  voxtrel --microphone in.wav wave record ann.wav
  voxtrel language check Voxtrel.lng          what a translator should mend

Exit codes: 0 done, 1 failed with a message on standard error, 2 wrong usage.)";

void AddGlobalOptions(CLI::App& app, Options& options) {
  app.set_version_flag("--version", "voxtrel " VOXTREL_VERSION);
  app.add_option("--root", options.root,
                 "Folder that stands for the device's root (default: voxtrel in the XDG data "
                 "folder)")
      ->type_name("DIR");
  app.add_option("--microphone", options.microphone,
                 "Record from this wave file (11,025 Hz, mono, 16 bit) and not from the microphone")
      ->type_name("FILE");
  app.add_option("--speaker", options.speaker,
                 "Play into this wave file, in place of what it held, and not to the loudspeaker")
      ->type_name("FILE");
  app.add_flag("--json", options.json, "Print one JSON object on standard output");
}

}  // namespace

int RunCommandLine(int argc, const char* const* argv) {
  CLI::App app("Voice tags for a speaker-dependent dialer: record, play, learn, look at, compare.",
               "voxtrel");
  app.footer(kFooter);
  app.require_subcommand(1);
  app.fallthrough();

  Options options;
  AddGlobalOptions(app, options);
  Session session(options);
  AddWaveCommands(app, session);
  AddTemplateCommands(app, session);
  AddLanguageCommands(app, session);

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : kWrongUsage;
  } catch (const std::exception& error) {
    // Nothing of the system throws; a library that ran out of something does.
    session.Fail(error.what());
  }
  return session.GetExitCode();
}

}  // namespace cli
