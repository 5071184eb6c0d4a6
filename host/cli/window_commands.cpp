#include "host/cli/commands.h"

#include <fmt/format.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "backends/posix/library.h"
#include "backends/posix/posix_process.h"
#include "host/cli/output.h"
#include "host/machine/places.h"

namespace cli {
namespace {

constexpr const char* kApplet = "voxtrel.cpl";

/// Returns whether the environment names a display; the window knows best how to use it.
bool HasDisplay() {
  constexpr const char* kVariables[] = {"WAYLAND_DISPLAY", "DISPLAY", "QT_QPA_PLATFORM"};
  return std::ranges::any_of(kVariables, [](const char* name) {
    const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe)
    // An empty variable is how scripts switch a display off.
    return value != nullptr && value[0] != '\0';
  });
}

/// Returns the program in this program's folder if both are installed, otherwise in the build tree.
/// No other one is taken: it would load libraries from its own place.
std::filesystem::path Find(const machine::Program& program) {
  return machine::Places(posix::FindOwnFile()).GetProgram(program);
}

/// Returns the options in front of the command in the form in which the applet takes them.
std::vector<std::string> VariablesOf(const Session& session) {
  const machine::Options& options = session.GetOptions().machine;
  std::vector<std::string> variables;
  const auto add = [&variables](std::string_view name, const std::string& value) {
    if (!value.empty()) {
      variables.push_back(std::string(name) + "=" + value);
    }
  };
  // By the environment, since the applet is a library: it has no command line of its own.
  add("VOXTREL_ROOT", options.root);
  add("VOXTREL_MICROPHONE", options.microphone);
  add("VOXTREL_SPEAKER", options.speaker);
  add("VOXTREL_CONTACTS", options.contacts);
  return variables;
}

// The windows belong to another program, which is started and waited for. So a command line without
// a screen needs none of its libraries, and a crash of a window is reported like any failure.
void RunWindow(Session& session, const machine::Program& program,
               const std::vector<std::string>& arguments) {
  if (!session.RequireRoot()) {
    return;
  }
  if (!HasDisplay()) {
    session.Fail(
        "there is no display to open a window on; without one, `voxtrel tags` does the same work");
    return;
  }
  const std::filesystem::path path = Find(program);
  if (::access(path.c_str(), X_OK) != 0) {
    session.Fail(
        fmt::format("{} is not installed; it belongs in this program's folder", program.name));
    return;
  }
  std::vector<std::string> command{path.native()};
  command.insert(command.end(), arguments.begin(), arguments.end());
  const auto end = posix::RunInForeground(command, VariablesOf(session));
  if (!end) {
    session.Fail(fmt::format("{} cannot be started", program.name));
  } else if (end->wasKilled) {
    session.Fail(fmt::format("{} was ended by signal {}", program.name, end->exitCode));
  } else if (end->exitCode != 0) {
    session.Fail(fmt::format("{} failed with exit code {}", program.name, end->exitCode));
  } else if (session.GetOptions().json) {
    session.SetJson({{"result", 0}});
  }
}

}  // namespace

void AddWindowCommands(CLI::App& app, Session& session) {
  const auto teaches = std::make_shared<bool>(false);
  CLI::App* home = app.add_subcommand(
      "home", "Open the window of your voice tags, as the program does without a command");
  home->add_flag("--teach", *teaches, "Teach a name at once");
  home->callback([&session, teaches] {
    RunWindow(session, machine::kHome,
              *teaches ? std::vector<std::string>{"--teach"} : std::vector<std::string>());
  });
  app.add_subcommand("open", "Open the settings sheet")->callback([&session] {
    RunWindow(session, machine::kPanel, {"--open", kApplet});
  });
  app.add_subcommand("panel", "Open the control panel")->callback([&session] {
    RunWindow(session, machine::kPanel, {});
  });
  // On a desktop a user who types the name of a program wants to see it.
  app.final_callback([&app, &session] {
    if (!app.get_subcommands().empty()) {
      return;
    }
    if (!HasDisplay()) {
      throw CLI::RequiredError::Subcommand(1);
    }
    RunWindow(session, machine::kHome, {});
  });
}

void RunConnectionWindow(Session& session, bool (*prepare)(Session& session)) {
  if (!session.RequireRoot()) {
    return;
  }
  if (!HasDisplay()) {
    session.Fail(
        "there is no screen here; see `voxtrel connection show` and `voxtrel connection set`");
    return;
  }
  if (!prepare(session)) {
    return;
  }
  const auto end = posix::RunInForeground(
      {Find(machine::kConnectionWindow).native(), session.GetRegistryPath().parent_path().native()},
      {});
  if (!end || end->wasKilled || end->exitCode != 0) {
    session.Fail("the window could not be shown; see `voxtrel connection show` and `set`");
  } else if (session.GetOptions().json) {
    session.SetJson({{"result", 0}});
  }
}

}  // namespace cli
