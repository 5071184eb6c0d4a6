#include "backends/desktop/environment.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>
#include <utility>

namespace xdg {
namespace {

std::string GetVariable(const char* name) {
  // Read before there is a second thread.
  const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe)
  return value == nullptr ? std::string() : std::string(value);
}

/// The parts between colons; folders count only where they are absolute.
std::vector<std::string> SplitFolders(std::string_view list) {
  std::vector<std::string> folders;
  while (!list.empty()) {
    const std::size_t end = std::min(list.find(':'), list.size());
    if (list.front() == '/') {
      folders.emplace_back(list.substr(0, end));
    }
    list.remove_prefix(std::min(end + 1, list.size()));
  }
  return folders;
}

std::vector<std::string> FindDataFolders() {
  std::vector<std::string> folders = SplitFolders(GetVariable("XDG_DATA_HOME"));
  if (folders.empty()) {
    if (const std::string home = GetVariable("HOME"); home.starts_with('/')) {
      folders.push_back(home + "/.local/share");
    }
  }
  std::string shared = GetVariable("XDG_DATA_DIRS");
  if (shared.empty()) {
    shared = "/usr/local/share:/usr/share";
  }
  for (std::string& folder : SplitFolders(shared)) {
    folders.push_back(std::move(folder));
  }
  return folders;
}

/// "de_AT.UTF-8" gives "de_AT" and "de"; the languages "C" and "POSIX" are none.
std::vector<std::string> FindLanguages() {
  std::string locale;
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    locale = GetVariable(name);
    if (!locale.empty()) {
      break;
    }
  }
  locale = locale.substr(0, locale.find_first_of(".@"));
  if (locale.empty() || locale == "C" || locale == "POSIX" ||
      locale.find('/') != std::string::npos) {
    return {};
  }
  std::vector<std::string> languages{locale};
  if (const std::size_t country = locale.find('_'); country != std::string::npos) {
    languages.push_back(locale.substr(0, country));
  }
  return languages;
}

}  // namespace

Environment ReadEnvironment() {
  std::string path = GetVariable("PATH");
  if (path.empty()) {
    path = "/usr/local/bin:/usr/bin:/bin";
  }
  return {SplitFolders(path), FindDataFolders(), FindLanguages(), GetVariable("BROWSER")};
}

}  // namespace xdg
