#include <gio/gdesktopappinfo.h>
#include <gio/gio.h>

#include <algorithm>
#include <array>
#include <memory>
#include <span>
#include <string_view>

#include "backends/desktop/desktop_shell.h"

namespace desktop {
namespace {

using std::chrono::milliseconds;

struct Release {
  void operator()(GAppInfo* application) const { g_object_unref(application); }
  void operator()(char** words) const { g_strfreev(words); }
};

/// Returns the desktop's default browser. Returns null if the user has none that is installed.
std::unique_ptr<GAppInfo, Release> FindDefaultBrowser() {
  std::unique_ptr<GAppInfo, Release> browser(g_app_info_get_default_for_uri_scheme("https"));
  if (!browser) browser.reset(g_app_info_get_default_for_type("text/html", FALSE));
  return browser;
}

/// GIO chooses the browser and does not start it. It would hand "%f", and an entry without a place
/// for the address, a file's path without the place within the page. It would give the browser our
/// standard streams and open a terminal, and it does not see a browser that fails at once.
bool OpenByDefault(const Environment& environment, const std::string& url, milliseconds patience) {
  const auto browser = FindDefaultBrowser();
  if (!browser) return false;
  // On this system what GIO finds is a desktop file.
  auto* const entry = reinterpret_cast<GDesktopAppInfo*>(browser.get());
  const char* const exec = g_app_info_get_commandline(browser.get());
  return exec != nullptr &&
         g_desktop_app_info_get_boolean(entry, G_KEY_FILE_DESKTOP_KEY_TERMINAL) == FALSE &&
         StartDetached(environment, MakeCommand(exec, url), patience);
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

/// Returns whether a field code stands for what is to be opened.
bool MeansUrl(char code) { return std::string_view("uUfF").find(code) != std::string_view::npos; }

/// Returns the argument with its field codes replaced: "%%" by a percent sign, those for what is
/// opened by the URL, all others by nothing.
std::string Expand(std::string_view argument, const std::string& url, bool& isUrlPlaced) {
  std::string text;
  for (std::size_t i = 0; i < argument.size(); ++i) {
    if (argument[i] != '%' || i + 1 == argument.size()) {
      text += argument[i];
      continue;
    }
    const char code = argument[++i];
    if (code == '%') {
      text += '%';
    } else if (MeansUrl(code)) {
      text += url;
      isUrlPlaced = true;
    }
  }
  return text;
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
  return OpenByDefault(environment, url, patience) ||
         StartDetached(environment, {"xdg-open", url}, patience) ||
         OpenByVariable(environment, url, patience) || OpenByName(environment, url, patience);
}

Command MakeCommand(const std::string& exec, const std::string& url) {
  int count = 0;
  char** split = nullptr;
  if (g_shell_parse_argv(exec.c_str(), &count, &split, nullptr) == FALSE) return {};
  const std::unique_ptr<char*, Release> words(split);
  Command command;
  bool isUrlPlaced = false;
  // The codes are replaced after the split, so no letter of the URL can end an argument.
  for (const std::string_view word : std::span(split, static_cast<std::size_t>(count))) {
    std::string expanded = Expand(word, url, isUrlPlaced);
    // A word that was a field code alone and stands for nothing here is no argument.
    if (!expanded.empty() || word.empty()) {
      command.push_back(std::move(expanded));
    }
  }
  if (!command.empty() && !isUrlPlaced) {
    command.push_back(url);
  }
  return command;
}

}  // namespace desktop
