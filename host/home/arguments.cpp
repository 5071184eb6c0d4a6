#include "host/home/arguments.h"

#include <CLI/CLI.hpp>
#include <string>
#include <utility>

#include "host/machine/usage.h"

namespace home {
namespace {

constexpr const char* kFooter = R"(Examples:
  voxtrel-home                      your voice tags
  voxtrel-home --teach              teach a name at once
  voxtrel-home --dial               say a name, and call that person
  voxtrel-home --contacts my.vcf    with the contacts of a vCard file

The environment gives the options that are not there: VOXTREL_ROOT, VOXTREL_CONTACTS,
VOXTREL_MICROPHONE, VOXTREL_SPEAKER.)";

}  // namespace

std::variant<Arguments, int> ParseArguments(machine::Options options, int argc,
                                            const char* const* argv) {
  Arguments arguments;
  arguments.machine = std::move(options);
  CLI::App app("Your voice tags: teach, hear, judge and delete them in a window.", "voxtrel-home");
  app.footer(kFooter);
  app.set_version_flag("--version", "voxtrel-home " VOXTREL_VERSION);
  app.add_option("--root", arguments.machine.root, "The folder of the voice tags and settings")
      ->type_name("FOLDER");
  app.add_option("--contacts", arguments.machine.contacts,
                 "eds for the desktop's address book, else a vCard file or a folder of them")
      ->type_name("BOOK");
  app.add_option("--microphone", arguments.machine.microphone,
                 "Record from this wave file and not from the microphone")
      ->type_name("FILE");
  app.add_option("--speaker", arguments.machine.speaker,
                 "Play into this wave file and not to the loudspeaker")
      ->type_name("FILE");
  app.add_flag("--teach", arguments.teaches, "Teach a name at once");
  app.add_flag("--dial", arguments.dials, "Open the page that hears a name and calls")
      ->excludes("--teach");
  // Not for users, so no help shows it. The program ends when the application object is there.
  app.add_flag("--probe", arguments.isProbe)->group("");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return machine::ExplainUsage(app, error);
  }
  return arguments;
}

}  // namespace home
