#include "host/cli/window_commands.h"

#include <fmt/format.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "host/cli/output.h"
#include "platform/posix/foreground_program.h"

namespace cli {
namespace {

constexpr const char* kPanel = "voxtrel-panel";
constexpr const char* kApplet = "voxtrel.cpl";

/// Whether the environment names a display; the panel knows best how to use it.
bool HasDisplay() {
  constexpr const char* kVariables[] = {"WAYLAND_DISPLAY", "DISPLAY", "QT_QPA_PLATFORM"};
  return std::ranges::any_of(kVariables, [](const char* name) {
    const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe)
    return value != nullptr && value[0] != '\0';
  });
}

/// The panel lies beside this program, be it installed or in the folder where it was built; else it
/// is looked for as every program.
std::string FindPanel() {
  for (const char* way : {"/", "/../panel/"}) {
    std::string path = posix::FindOwnFolder() + way + kPanel;
    if (::access(path.c_str(), X_OK) == 0) {
      return path;
    }
  }
  return kPanel;
}

/// What stood before the command, as the applet takes it.
std::vector<std::string> VariablesOf(const Session& session) {
  const Options& options = session.GetOptions();
  std::vector<std::string> variables;
  const auto add = [&variables](std::string_view name, const std::string& value) {
    if (!value.empty()) {
      variables.push_back(std::string(name) + "=" + value);
    }
  };
  add("VOXTREL_ROOT", options.root);
  add("VOXTREL_MICROPHONE", options.microphone);
  add("VOXTREL_SPEAKER", options.speaker);
  add("VOXTREL_CONTACTS", options.contacts);
  return variables;
}

void RunWindow(Session& session, const std::vector<std::string>& arguments) {
  if (!session.RequireRoot()) {
    return;
  }
  if (!HasDisplay()) {
    session.Fail(
        "there is no display to open a window on; without one, `voxtrel tags` does the same work");
    return;
  }
  std::vector<std::string> command{FindPanel()};
  command.insert(command.end(), arguments.begin(), arguments.end());
  const auto end = posix::RunInForeground(command, VariablesOf(session));
  constexpr int kNotFound = 127;  // From where a program is started before it is looked for.
  if (!end || (!end->wasKilled && end->exitCode == kNotFound)) {
    session.Fail(fmt::format("{} is not installed; it belongs beside this program", kPanel));
  } else if (end->wasKilled) {
    session.Fail(fmt::format("{} was ended by signal {}", kPanel, end->exitCode));
  } else if (end->exitCode != 0) {
    session.Fail(fmt::format("{} failed with exit code {}", kPanel, end->exitCode));
  } else if (session.GetOptions().json) {
    PrintJson({{"result", 0}});
  }
}

}  // namespace

void AddWindowCommands(CLI::App& app, Session& session) {
  app.add_subcommand("open", "Open the window, in which all of this is done by clicks")
      ->callback([&session] {
        RunWindow(session, {"--open", kApplet});
      });
  app.add_subcommand("panel", "Open the control panel that the window is opened from")
      ->callback([&session] { RunWindow(session, {}); });
}

}  // namespace cli
