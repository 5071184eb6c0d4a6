#include "backends/desktop/default_program.h"

#include <gio/gdesktopappinfo.h>
#include <gio/gio.h>

#include <memory>
#include <span>
#include <string_view>
#include <utility>

// What the desktop opens an address with. GIO finds the program and splits its command line; the
// program itself is started as every other one is, detached.
namespace desktop {
namespace {

struct Release {
  void operator()(GAppInfo* application) const { g_object_unref(application); }
  void operator()(char** words) const { g_strfreev(words); }
  void operator()(GError* error) const { g_error_free(error); }
};

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

/// Returns null if the user has none that is installed.
std::unique_ptr<GAppInfo, Release> FindProgramFor(const char* scheme, const char* type) {
  std::unique_ptr<GAppInfo, Release> program(g_app_info_get_default_for_uri_scheme(scheme));
  if (!program && type != nullptr) {
    program.reset(g_app_info_get_default_for_type(type, FALSE));
  }
  return program;
}

constexpr const char* kTelephone = "tel";

}  // namespace

std::optional<Command> FindDefault(const char* scheme, const char* type, const std::string& url) {
  const auto program = FindProgramFor(scheme, type);
  if (!program) {
    return std::nullopt;
  }
  // On this system what GIO finds is a desktop file.
  auto* const entry = reinterpret_cast<GDesktopAppInfo*>(program.get());
  const char* const exec = g_app_info_get_commandline(program.get());
  // A program for a terminal would need one, which a window does not have.
  if (exec == nullptr ||
      g_desktop_app_info_get_boolean(entry, G_KEY_FILE_DESKTOP_KEY_TERMINAL) != FALSE) {
    return std::nullopt;
  }
  auto command = MakeCommand(exec, url);
  return command ? std::optional(std::move(*command)) : std::nullopt;
}

HandOver HandOverCall(const Environment& environment, const std::string& uri,
                      std::chrono::milliseconds patience) {
  const auto command = FindDefault(kTelephone, nullptr, uri);
  if (!command) {
    return HandOver::kNoProgram;
  }
  return StartDetached(environment, *command, patience) ? HandOver::kDone : HandOver::kFailed;
}

bool HasTelephoneProgram() { return FindDefault(kTelephone, nullptr, "tel:0").has_value(); }

platform::Result<Command, ExecError> MakeCommand(const std::string& exec, const std::string& url) {
  int count = 0;
  char** split = nullptr;
  GError* problem = nullptr;
  if (g_shell_parse_argv(exec.c_str(), &count, &split, &problem) == FALSE) {
    const std::unique_ptr<GError, Release> freed(problem);
    return platform::Failure(g_error_matches(problem, G_SHELL_ERROR, G_SHELL_ERROR_EMPTY_STRING) !=
                                     FALSE
                                 ? ExecError::kNoProgram
                                 : ExecError::kBadQuotes);
  }
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
  if (command.empty()) {
    return platform::Failure(ExecError::kNoProgram);
  }
  if (!isUrlPlaced) {
    command.push_back(url);
  }
  return command;
}

}  // namespace desktop
