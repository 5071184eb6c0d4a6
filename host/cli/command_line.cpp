#include "host/cli/command_line.h"

#include <CLI/CLI.hpp>
#include <exception>
#include <new>
#include <sstream>
#include <string>
#include <string_view>

#include "host/cli/commands.h"
#include "host/cli/output.h"
#include "host/cli/session.h"

namespace cli {
namespace {

constexpr int kWrongUsage = 2;

constexpr const char* kFooter = R"(Examples:
  voxtrel open                                the window where you do all of this by clicks
  voxtrel wave record ann.wav                 say a name within three seconds
  voxtrel wave play ann.wav                   hear it
  voxtrel template learn ann.wav ann.st       find the speech, trim the file to it
  voxtrel template show ann.st                look at the template
  voxtrel template compare ann.st bob.st      how alike two names sound
  voxtrel --microphone in.wav wave record ann.wav
  voxtrel language check Voxtrel.lng          what a translator should mend
  voxtrel --contacts all.vcf contacts list    who can have a voice tag
  voxtrel tags learn --contact "Lee Ann" --number Mobile
  voxtrel tags list                           the voice tags there are
  voxtrel tags test                           which voice tags sound too much alike
  voxtrel check                               is anything wrong with the voice tags?
  voxtrel connection set port=COM1: baud-rate=115200
                                              the dialer's serial port
  voxtrel status                              what is missing on this machine
  voxtrel registry export tags.reg            take the settings to a Windows machine

Exit codes: 0 done, 1 failed with a message on standard error, 2 wrong usage.)";

void AddGlobalOptions(CLI::App& app, Options& options) {
  app.set_version_flag("--version", "voxtrel " VOXTREL_VERSION);
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
  app.add_flag("--json", options.json, "Print one JSON object on standard output");
}

/// Prints the help, the version, or what is wrong; the library quotes arguments as they are.
int ExplainUsage(const CLI::App& app, const CLI::ParseError& error) {
  std::ostringstream output;
  std::ostringstream errors;
  const int exitCode = app.exit(error, output, errors) == 0 ? 0 : kWrongUsage;
  const auto print = [](std::string text, void (*printLine)(std::string_view)) {
    if (text.ends_with('\n')) {
      text.pop_back();
    }
    if (!text.empty()) {
      printLine(text);
    }
  };
  print(output.str(), PrintLine);
  print(errors.str(), PrintErrorLine);
  return exitCode;
}

int RunCommand(int argc, const char* const* argv) {
  CLI::App app("Voice tags for a speaker-dependent dialer: record, learn, play, compare.",
               "voxtrel");
  app.footer(kFooter);
  app.require_subcommand(1);
  app.fallthrough();

  Options options;
  AddGlobalOptions(app, options);
  Session session(options);
  AddWindowCommands(app, session);
  AddWaveCommands(app, session);
  AddTemplateCommands(app, session);
  AddLanguageCommands(app, session);
  AddRegistryCommands(app, session);
  AddContactsCommands(app, session);
  AddTagsCommands(app, session);
  AddMaintenanceCommands(app, session);
  AddConnectionCommands(app, session);
  AddStatusCommands(app, session);

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return ExplainUsage(app, error);
  } catch (const std::bad_alloc&) {
    throw;  // To say so here takes memory.
  } catch (const std::exception& error) {
    // Nothing of the system throws; a library that ran out of something does.
    session.Fail(error.what());
  }
  return session.GetExitCode();
}

}  // namespace

int RunCommandLine(int argc, const char* const* argv) {
  const int exitCode = RunCommand(argc, argv);
  if (FlushOutput()) {
    return exitCode;
  }
  PrintErrorLine("voxtrel: not all of the output could be written to standard output");
  return exitCode == 0 ? kFailed : exitCode;
}

}  // namespace cli
