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

bool OpenByDefault(const Environment& environment, const std::string& url, milliseconds patience) {
  const auto command = FindDefault("https", "text/html", url);
  return command && StartDetached(environment, *command, patience);
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

bool OpenByVariable(const Environment& environment, const std::string& url, milliseconds patience) {
  // $BROWSER is a list of commands, of which the first that works is the one.
  std::string_view commands = environment.browsers;
  while (!commands.empty()) {
    const std::size_t end = std::min(commands.find(':'), commands.size());
    if (StartDetached(environment, ReadCommand(commands.substr(0, end), url), patience)) {
      return true;
    }
    commands.remove_prefix(std::min(end + 1, commands.size()));
  }
  return false;
}

/// Some systems have a browser and neither a list of what opens what nor xdg-utils. So the names
/// that packages give to browsers are tried last. Those of Debian's own choice come first.
bool OpenByName(const Environment& environment, const std::string& url, milliseconds patience) {
  constexpr std::array<const char*, 12> kNames{
      "x-www-browser",    "gnome-www-browser", "firefox",
      "firefox-esr",      "chromium",          "google-chrome",
      "chromium-browser", "brave-browser",     "epiphany",
      "falkon",           "konqueror",         "opera"};
  return std::ranges::any_of(kNames, [&](const char* name) {
    return StartDetached(environment, {name, url}, patience);
  });
}

}  // namespace

bool OpenInBrowser(const Environment& environment, const std::string& url, milliseconds patience) {
  // From what the user has chosen to what there happens to be.
  return OpenByDefault(environment, url, patience) ||
         StartDetached(environment, {"xdg-open", url}, patience) ||
         OpenByVariable(environment, url, patience) || OpenByName(environment, url, patience);
}

}  // namespace desktop
