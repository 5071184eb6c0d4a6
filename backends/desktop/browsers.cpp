#include <algorithm>
#include <array>
#include <string_view>

#include "backends/desktop/default_program.h"
#include "backends/desktop/desktop_shell.h"

// The user's browser. There are several ways to ask for it, and each system lacks some, so all are
// tried in turn.
namespace desktop {
namespace {

using std::chrono::milliseconds;

using Opened = platform::Result<void, StartError>;

Opened OpenByDefault(const Environment& environment, const std::string& url,
                     milliseconds patience) {
  const auto command = FindDefault("https", "text/html", url);
  return command ? StartDetached(environment, *command, patience)
                 : platform::Failure(StartError::kNoProgram);
}

/// Returns one command of $BROWSER, split at blanks. The URL replaces "%s", or comes last.
Command ReadCommand(std::string_view text, const std::string& url) {
  Command command;
  bool isUrlPlaced = false;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(' '), text.size());
    std::string argument(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (const std::size_t place = argument.find("%s"); place != std::string::npos) {
      argument.replace(place, 2, url);
      isUrlPlaced = true;
    }
    if (!argument.empty()) {
      command.push_back(std::move(argument));
    }
  }
  if (!command.empty() && !isUrlPlaced) {
    command.push_back(url);
  }
  return command;
}

Opened OpenByVariable(const Environment& environment, const std::string& url,
                      milliseconds patience) {
  // $BROWSER is a list of commands, of which the first that works is the one.
  std::string_view commands = environment.browsers;
  Opened opened = platform::Failure(StartError::kNoProgram);
  while (!commands.empty()) {
    const std::size_t end = std::min(commands.find(':'), commands.size());
    opened = StartDetached(environment, ReadCommand(commands.substr(0, end), url), patience);
    if (opened) {
      break;
    }
    commands.remove_prefix(std::min(end + 1, commands.size()));
  }
  return opened;
}

/// Some systems have a browser and neither a list of what opens what nor xdg-utils. So the names
/// that packages give to browsers are tried last. Those of Debian's own choice come first.
Opened OpenByName(const Environment& environment, const std::string& url, milliseconds patience) {
  constexpr std::array<const char*, 12> kNames{
      "x-www-browser",    "gnome-www-browser", "firefox",
      "firefox-esr",      "chromium",          "google-chrome",
      "chromium-browser", "brave-browser",     "epiphany",
      "falkon",           "konqueror",         "opera"};
  Opened opened = platform::Failure(StartError::kNoProgram);
  for (std::size_t i = 0; i < kNames.size() && !opened; ++i) {
    opened = StartDetached(environment, {kNames[i], url}, patience);
  }
  return opened;
}

}  // namespace

platform::Result<void, StartError> OpenInBrowser(const Environment& environment,
                                                 const std::string& url, milliseconds patience) {
  // From what the user has chosen to what there happens to be.
  Opened opened = OpenByDefault(environment, url, patience);
  if (!opened) {
    opened = StartDetached(environment, {"xdg-open", url}, patience);
  }
  if (!opened) {
    opened = OpenByVariable(environment, url, patience);
  }
  return opened ? opened : OpenByName(environment, url, patience);
}

}  // namespace desktop
