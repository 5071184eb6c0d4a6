#include "host/panel/arguments.h"

#include <CLI/CLI.hpp>

#include "host/machine/usage.h"

// The command line of voxtrel-panel. A path of an applet is a path to code, so only full paths and
// names of installed applets are taken.
namespace panel {
namespace {

constexpr const char* kFooter = R"(Examples:
  voxtrel-panel                       the applets that are installed
  voxtrel-panel --open voxtrel.cpl    one applet's window at once
  voxtrel-panel /opt/applets          the applets of a folder

In the environment of the panel, for the voice dialer's applet:
  VOXTREL_CONTACTS      an address book: eds for the desktop's, else a vCard file or a folder of them
  VOXTREL_MICROPHONE    record from this wave file and not from the microphone
  VOXTREL_SPEAKER       play into this wave file and not to the loudspeaker
  VOXTREL_ROOT          the folder of the voice tags and settings)";

/// Code is loaded from the file. So its name must not mean another file if the current folder is
/// another one.
CLI::Validator FullPath(const std::string& wanted) {
  return {[wanted](const std::string& path) {
            return path.starts_with('/') ? std::string() : path + " is not " + wanted;
          },
          ""};
}

CLI::Validator InstalledNameOrFullPath() {
  return {[](const std::string& name) {
            const bool isName = name.find('/') == std::string::npos;
            return isName || name.starts_with('/')
                       ? std::string()
                       : name + " is neither the name of an installed applet nor a full path";
          },
          ""};
}

}  // namespace

std::variant<Arguments, int> ParseArguments(int argc, const char* const* argv) {
  CLI::App app("A control panel: shows applets and opens each in a process of its own.",
               "voxtrel-panel");
  app.footer(kFooter);
  app.set_version_flag("--version", "voxtrel-panel " VOXTREL_VERSION);

  Arguments arguments;
  CLI::Option* places =
      app.add_option("PLACE", arguments.places,
                     "Applets (*.cpl) or folders of them to show, by their full paths (default: "
                     "those installed)")
          ->check(FullPath("the full path of an applet or a folder"))
          ->check(CLI::ExistingPath);
  CLI::Option* open =
      app.add_option("--open", arguments.applet,
                     "Open this applet at once, without the panel: an installed one by its name, "
                     "another one by its full path")
          ->type_name("FILE")
          ->check(InstalledNameOrFullPath())
          ->excludes(places);
  // The options that follow are for programs, above all for the panel, which starts itself. The
  // help does not show them.
  std::string inquired;
  app.add_option("--inquire", inquired)
      ->group("")
      ->check(FullPath("a full path"))
      ->excludes(places)
      ->excludes(open);
  app.add_option("--number", arguments.number)->group("")->needs(open);
  app.add_option("--remark", arguments.remark)->group("")->needs(open);
  app.add_flag("--watched", arguments.isWatched)->group("")->needs(open);

  bool isProbe = false;
  app.add_flag("--probe", isProbe)->group("");

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return machine::ExplainUsage(app, error);
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
