#include "host/panel/arguments.h"

#include <CLI/CLI.hpp>

namespace panel {
namespace {

constexpr int kWrongUsage = 2;

constexpr const char* kFooter = R"(Examples:
  voxtrel-panel                       the applets that are installed
  voxtrel-panel ./build               the applets of a folder
  voxtrel-panel --open voxtrel.cpl    one applet's window at once

In the environment of the panel, for the voice dialer's applet:
  VOXTREL_CONTACTS      an address book: eds for the desktop's, else a vCard file or a folder of them
  VOXTREL_MICROPHONE    record from this wave file and not from the microphone
  VOXTREL_SPEAKER       play into this wave file and not to the loudspeaker
  VOXTREL_ROOT          the folder that stands for the device's disk)";

}  // namespace

std::variant<Arguments, int> ParseArguments(int argc, const char* const* argv) {
  CLI::App app("A control panel: shows applets and opens each in a process of its own.",
               "voxtrel-panel");
  app.footer(kFooter);
  app.set_version_flag("--version", "voxtrel-panel " VOXTREL_VERSION);

  Arguments arguments;
  CLI::Option* places =
      app.add_option("PLACE", arguments.places,
                     "Applets (*.cpl) or folders of them to show (default: those installed)")
          ->check(CLI::ExistingPath);
  CLI::Option* open =
      app.add_option("--open", arguments.applet,
                     "Open this applet at once, without the panel; a name without a slash is "
                     "looked for among the installed ones")
          ->type_name("FILE")
          ->excludes(places);
  // What follows is for programs: mostly the panel says it to itself.
  std::string inquired;
  app.add_option("--inquire", inquired)->group("")->excludes(places)->excludes(open);
  app.add_option("--number", arguments.number)->group("")->needs(open);
  app.add_flag("--watched", arguments.isWatched)->group("")->needs(open);

  bool isProbe = false;
  app.add_flag("--probe", isProbe)->group("");

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : kWrongUsage;
  }
  if (isProbe) {
    arguments.mode = Mode::kProbe;
  } else if (open->count() > 0) {
    arguments.mode = Mode::kOpen;
  } else if (!inquired.empty()) {
    arguments.mode = Mode::kInquire;
    arguments.applet = inquired;
  }
  return arguments;
}

}  // namespace panel
