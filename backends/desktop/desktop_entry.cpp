#include "backends/desktop/desktop_entry.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace xdg {
namespace {

std::string_view Trim(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r";
  const std::size_t begin = std::min(text.find_first_not_of(kBlanks), text.size());
  text.remove_prefix(begin);
  return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

/// The escapes that every value of a desktop file can hold.
std::string Unescape(std::string_view value) {
  std::string text;
  for (std::size_t i = 0; i < value.size(); ++i) {
    if (value[i] != '\\' || i + 1 == value.size()) {
      text += value[i];
      continue;
    }
    const char escaped = value[++i];
    switch (escaped) {
      case 's':
        text += ' ';
        break;
      case 'n':
        text += '\n';
        break;
      case 't':
        text += '\t';
        break;
      case 'r':
        text += '\r';
        break;
      case '\\':
        text += '\\';
        break;
      default:
        // Escapes of the Exec key itself, which come next.
        text += '\\';
        text += escaped;
    }
  }
  return text;
}

std::optional<std::string> ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    return std::nullopt;
  }
  return std::string(std::istreambuf_iterator<char>(file), {});
}

/// One argument of the Exec key while it is read.
struct Argument {
  std::string text;
  bool isThere = false;  ///< An empty one in quotes is there too.
};

/// Reads from `exec` at `at`, behind the opening quote, up to behind the closing one.
bool ReadQuoted(std::string_view exec, std::size_t& at, Argument& argument) {
  for (; at < exec.size() && exec[at] != '"'; ++at) {
    if (exec[at] == '\\' && at + 1 < exec.size()) {
      ++at;
    }
    argument.text += exec[at];
  }
  if (at == exec.size()) {
    return false;
  }
  ++at;
  return true;
}

/// The arguments with their field codes still in them; nothing where a quote is left open.
std::optional<Command> SplitExec(std::string_view exec) {
  Command arguments;
  Argument argument;
  const auto finish = [&] {
    if (argument.isThere) {
      arguments.push_back(argument.text);
    }
    argument = {};
  };
  for (std::size_t at = 0; at < exec.size();) {
    const char character = exec[at++];
    if (character == ' ' || character == '\t') {
      finish();
      continue;
    }
    argument.isThere = true;
    if (character != '"') {
      argument.text += character;
    } else if (!ReadQuoted(exec, at, argument)) {
      return std::nullopt;
    }
  }
  finish();
  return arguments;
}

/// Whether a field code stands for what is to be opened.
bool MeansUrl(char code) { return std::string_view("uUfF").find(code) != std::string_view::npos; }

/// The argument with its field codes replaced: %% by a percent sign, those for what is opened by
/// the URL, all others by nothing.
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

}  // namespace

std::optional<DesktopEntry> ParseDesktopEntry(std::string_view file) {
  DesktopEntry entry;
  bool isMainGroup = false;
  while (!file.empty()) {
    const std::size_t end = std::min(file.find('\n'), file.size());
    const std::string_view line = Trim(file.substr(0, end));
    file.remove_prefix(std::min(end + 1, file.size()));
    if (line.starts_with('[')) {
      isMainGroup = line == "[Desktop Entry]";
    }
    const std::size_t equals = line.find('=');
    if (!isMainGroup || equals == std::string_view::npos) {
      continue;
    }
    const std::string_view key = Trim(line.substr(0, equals));
    const std::string_view value = Trim(line.substr(equals + 1));
    if (key == "Exec") {
      entry.exec = Unescape(value);
    } else if (key == "Terminal") {
      entry.needsTerminal = value == "true";
    }
  }
  return entry.exec.empty() ? std::nullopt : std::optional(entry);
}

std::optional<DesktopEntry> FindDesktopEntry(const Environment& environment,
                                             const std::string& name) {
  if (name.find('/') != std::string::npos || !name.ends_with(".desktop")) {
    return std::nullopt;
  }
  std::string inFolder = name;
  if (const std::size_t dash = name.find('-'); dash != std::string::npos) {
    inFolder[dash] = '/';
  }
  for (const std::string& folder : environment.dataFolders) {
    for (const std::string& file : {name, inFolder}) {
      if (const auto content = ReadFile(folder + "/applications/" + file)) {
        return ParseDesktopEntry(*content);
      }
    }
  }
  return std::nullopt;
}

Command MakeCommand(const DesktopEntry& entry, const std::string& url) {
  const std::optional<Command> arguments = SplitExec(entry.exec);
  if (!arguments) {
    return {};
  }
  Command command;
  bool isUrlPlaced = false;
  for (const std::string& argument : *arguments) {
    std::string expanded = Expand(argument, url, isUrlPlaced);
    // What was a field code alone and stands for nothing here is no argument.
    if (!expanded.empty() || argument.empty()) {
      command.push_back(std::move(expanded));
    }
  }
  if (!command.empty() && !isUrlPlaced) {
    command.push_back(url);
  }
  return command;
}

}  // namespace xdg
