#include "backends/desktop/browsers.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "backends/desktop/desktop_entry.h"
#include "backends/desktop/programs.h"

namespace xdg {
namespace {

using std::chrono::milliseconds;

/// Name of the desktop file of the default browser.
std::optional<std::string> FindDefaultBrowser(const Environment& environment,
                                              milliseconds patience) {
  const Command questions[] = {{"xdg-settings", "get", "default-web-browser"},
                               {"xdg-mime", "query", "default", "x-scheme-handler/https"},
                               {"xdg-mime", "query", "default", "text/html"}};
  for (const Command& question : questions) {
    if (auto answer = ReadLine(environment, question, patience)) {
      return answer;
    }
  }
  return std::nullopt;
}

bool OpenByDefault(const Environment& environment, const std::string& url, milliseconds patience) {
  const auto name = FindDefaultBrowser(environment, patience);
  const auto entry = name ? FindDesktopEntry(environment, *name) : std::nullopt;
  return entry && !entry->needsTerminal &&
         StartDetached(environment, MakeCommand(*entry, url), patience);
}

/// One command of $BROWSER, split at blanks; "%s" is where the URL goes.
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

}  // namespace

bool OpenInBrowser(const Environment& environment, const std::string& url, milliseconds patience) {
  return OpenByDefault(environment, url, patience) ||
         StartDetached(environment, {"xdg-open", url}, patience) ||
         OpenByVariable(environment, url, patience);
}

}  // namespace xdg
