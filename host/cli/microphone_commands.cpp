#include "host/cli/commands.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "backends/text/utf.h"
#include "host/cli/output.h"
#include "storage/microphone_choice.h"
#include "storage/registry_file.h"

// The choice of the microphone on the command line. It is a setting of this system's own, which the
// sound server does not hear of.
namespace cli {
namespace {

using platform::WaveInput;

/// Takes a choice back.
constexpr const char* kDefault = "default";

void ListInputs(Session& session) {
  if (!session.OpenForReading()) {
    return;
  }
  const auto inputs = session.GetWaveInputs().List();
  if (!inputs) {
    session.Fail("the sound server does not answer");
    return;
  }
  const std::string chosen = text::ToUtf8(storage::ReadMicrophone(session.GetRegistry()));
  if (session.GetOptions().json) {
    Json list = Json::array();
    for (const WaveInput& input : *inputs) {
      list.push_back({{"name", text::ToUtf8(input.name)},
                      {"description", text::ToUtf8(input.description)},
                      {"used", input.isUsed}});
    }
    session.SetJson({{"inputs", std::move(list)}, {"chosen", chosen}});
    return;
  }
  for (const WaveInput& input : *inputs) {
    PrintLine(fmt::format("{} {}  {}", input.isUsed ? "*" : " ", text::ToUtf8(input.name),
                          text::ToUtf8(input.description)));
  }
  if (inputs->empty()) {
    PrintLine("There is no microphone.");
  }
}

void UseInput(Session& session, const std::string& name) {
  if (!session.OpenForChanging()) {
    return;
  }
  std::u16string chosen;
  // A name is checked against the inputs that there are now. The choice of the desktop needs none.
  if (name != kDefault) {
    chosen = text::FromUtf8(name);
    const auto inputs = session.GetWaveInputs().List();
    if (!inputs) {
      session.Fail("the sound server does not answer");
      return;
    }
    if (std::ranges::find(*inputs, chosen, &WaveInput::name) == inputs->end()) {
      session.Fail(name + ": there is no such input; `voxtrel microphone list` names them");
      return;
    }
  }
  if (const auto kept = storage::ChooseMicrophone(session.GetRegistry(), chosen); !kept) {
    session.Fail(session.ExplainStore(kept.error()));
    return;
  }
  session.SetJson({{"chosen", text::ToUtf8(chosen)}});
}

}  // namespace

void AddMicrophoneCommands(CLI::App& app, Session& session) {
  CLI::App* group = app.add_subcommand("microphone", "List and choose what is recorded from");
  group->require_subcommand(1);
  group->add_subcommand("list", "List the inputs; a star marks the one that is recorded from")
      ->callback([&session] { ListInputs(session); });
  CLI::App* use = group->add_subcommand("use", "Choose an input for this program");
  const auto name = std::make_shared<std::string>();
  use->add_option("name", *name, "The input's name in the list; default: the sound server's choice")
      ->required();
  use->callback([&session, name] { UseInput(session, *name); });
}

}  // namespace cli
