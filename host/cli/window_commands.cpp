#include "backends/text/host_path.h"
#include "host/cli/commands.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/cli/output.h"
#include "host/cli/system.h"
#include "host/machine/places.h"

// Commands that open a window. Each starts the program that has it.
namespace cli {
namespace {

constexpr const char* kApplet = "voxtrel.cpl";

// The windows belong to another program, which is started and waited for. So a command line without
// a screen needs none of its libraries, and a crash of a window is reported like any failure.
void ShowWindow(Session& session, const machine::Program& program,
                const std::vector<std::string>& arguments) {
  if (!session.RequireRoot()) {
    return;
  }
  if (!HasDisplay()) {
    session.Fail(
        "there is no display to open a window on; without one, `voxtrel tags` does the same work");
    return;
  }
  const auto shown = RunWindow(program, arguments, VariablesOf(session));
  if (!shown) {
    session.Fail(shown.error());
  } else if (session.GetOptions().json) {
    session.SetJson({{"result", 0}});
  }
}

}  // namespace

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

void AddWindowCommands(CLI::App& app, Session& session) {
  const auto page = std::make_shared<std::vector<std::string>>();
  CLI::App* home = app.add_subcommand(
      "home", "Open the window of your voice tags, as the program does without a command");
  CLI::Option* const teach = home->add_flag_callback(
      "--teach", [page] { *page = {"--teach"}; }, "Teach a name at once");
  home->add_flag_callback(
          "--dial", [page] { *page = {"--dial"}; },
          "Open the page that hears a name and calls that person")
      ->excludes(teach);
  home->callback([&session, page] { ShowWindow(session, machine::kHome, *page); });
  app.add_subcommand("open", "Open the settings sheet")->callback([&session] {
    ShowWindow(session, machine::kPanel, {"--open", kApplet});
  });
  app.add_subcommand("panel", "Open the control panel")->callback([&session] {
    ShowWindow(session, machine::kPanel, {});
  });
  // On a desktop a user who types the name of a program wants to see it.
  app.final_callback([&app, &session] {
    if (!app.get_subcommands().empty()) {
      return;
    }
    if (!CanShowHome()) {
      throw CLI::RequiredError::Subcommand(1);
    }
    ShowWindow(session, machine::kHome, {});
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
  if (!RunWindow(machine::kConnectionWindow, {text::FromHostPath(session.GetRoot())}, {})) {
    session.Fail("the window could not be shown; see `voxtrel connection show` and `set`");
  } else if (session.GetOptions().json) {
    session.SetJson({{"result", 0}});
  }
}

}  // namespace cli
