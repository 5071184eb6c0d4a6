#include "host/cli/commands.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "backends/text/host_path.h"
#include "backends/text/utf.h"
#include "connection/connection_page.h"
#include "connection/serial_ports.h"
#include "host/cli/connection_settings.h"
#include "host/cli/file_arguments.h"
#include "host/cli/output.h"
#include "host/cli/system.h"
#include "host/machine/backends.h"
#include "host/session/page_run.h"
#include "resources/strings.h"
#include "storage/registry_file.h"

// The commands work the controls of the real page, in a sheet that nobody sees. So they follow the
// rules of the window, and nothing but the page writes the settings.

namespace cli {
namespace {

using Values = std::vector<std::string>;

std::string ValueOf(const headless::HeadlessDialog& dialog, const ConnectionSetting& setting) {
  return setting.isCheck ? (dialog.IsChecked(setting.control) ? "1" : "0")
                         : text::ToUtf8(dialog.GetText(setting.control));
}

/// Makes the ports that the machine has now known to the page. Returns false, and reports it, if
/// there is no store.
bool PreparePorts(Session& session) {
  if (!session.OpenForChanging()) {
    return false;
  }
  platform::Registry& registry = session.GetRegistry();
  if (const auto root = registry.OpenKey(u""); !root) {
    session.Fail(fmt::format("{}: {}", session.GetRegistryName(),
                             storage::ExplainRegistryError(root.error())));
    return false;
  }
  PublishPorts(registry);
  return true;
}

/// Opens the page over `registry` without a window, and hands it to `use`.
void RunWithoutWindow(Session& session, platform::Registry& registry,
                      const std::function<void(headless::HeadlessSheet&)>& use) {
  // The story is what a user would do. The sheet closes when it returns.
  session.GetUi().SetSheetStory(use);
  connection::RunConnectionSheet(session.GetUi(), registry,
                                 session::LoadTexts(session)(resources::kSheetCaption));
}

Values ReadValues(Session& session, platform::Registry& registry) {
  Values values;
  RunWithoutWindow(session, registry, [&values](headless::HeadlessSheet& sheet) {
    for (const ConnectionSetting& setting : kConnectionSettings) {
      values.push_back(ValueOf(*sheet.ShowPage(0), setting));
    }
  });
  return values;
}

/// `registry` has the ports.
void PrintValues(Session& session, const Values& values, platform::Registry& registry) {
  const auto ports = connection::ReadActivePorts(registry);
  if (!session.GetOptions().json) {
    for (std::size_t i = 0; i < kConnectionSettings.size(); ++i) {
      PrintLine(fmt::format("{:<13}{}", kConnectionSettings[i].name, values[i]));
    }
    for (const connection::ActivePort& port : ports) {
      PrintLine(fmt::format("{:<13}is {}", text::ToUtf8(port.name),
                            text::ToUtf8(connection::DescribeDevice(port))));
    }
    return;
  }
  Json json;
  for (std::size_t i = 0; i < kConnectionSettings.size(); ++i) {
    json[std::string(kConnectionSettings[i].jsonName)] =
        kConnectionSettings[i].isCheck ? Json(values[i] == "1") : Json(values[i]);
  }
  json["ports"] = Json::array();
  for (const connection::ActivePort& port : ports) {
    json["ports"].push_back(
        {{"name", text::ToUtf8(port.name)}, {"device", text::ToUtf8(port.device)}});
    if (!port.description.empty()) {
      json["ports"].back()["description"] = text::ToUtf8(port.description);
    }
  }
  session.SetJson(json);
}

void Show(Session& session) {
  if (!session.RequireRoot()) {
    return;
  }
  const auto folder = session.HasRootFolder() ? nullptr : TemporaryFolder::Make();
  if (!folder) {
    if (PreparePorts(session)) {
      PrintValues(session, ReadValues(session, session.GetRegistry()), session.GetRegistry());
    }
    return;
  }
  // A root folder that is missing counts as a new one. It is not made, since its name may be
  // mistyped. So the settings of a temporary one are shown.
  machine::Options options = session.GetOptions().machine;
  options.root = text::FromHostPath(folder->GetPath());
  machine::Backends backends(options);
  PublishPorts(backends.GetRegistry());
  PrintValues(session, ReadValues(session, backends.GetRegistry()), backends.GetRegistry());
}

/// Does to the page what the user asks for.
void Apply(headless::HeadlessDialog& dialog, const ConnectionChange& change) {
  const int control = change.setting->control;
  if (change.setting->isCheck) {
    // A box has no "set", only a press that turns it over.
    if (dialog.IsChecked(control) != change.isChecked) {
      dialog.Press(control);
    }
    return;
  }
  const std::vector<std::u16string> items = dialog.GetItems(control);
  if (const auto item = std::ranges::find(items, change.value); item != items.end()) {
    dialog.Choose(control, static_cast<int>(item - items.begin()));
  } else {
    dialog.Type(control, change.value);  // A port that is unplugged now.
  }
}

// Every argument is looked at before anything is opened: a wrong one is a wrong usage, and then
// nothing has changed.
void Set(Session& session, const std::vector<std::string>& arguments) {
  std::vector<ConnectionChange> changes;
  std::ranges::transform(arguments, std::back_inserter(changes), ParseConnectionChange);
  if (!PreparePorts(session)) {
    return;
  }
  TidyTrash(session);
  Values wanted;
  // The page stores each setting by itself. One command is one change: the dialer never finds the
  // rate of one line with the bits of another.
  auto group = platform::RegistryGroup::Begin(session.GetRegistry());
  RunWithoutWindow(session, session.GetRegistry(), [&](headless::HeadlessSheet& sheet) {
    headless::HeadlessDialog& dialog = *sheet.ShowPage(0);
    for (const ConnectionChange& change : changes) {
      Apply(dialog, change);
    }
    for (const ConnectionSetting& setting : kConnectionSettings) {
      wanted.push_back(ValueOf(dialog, setting));
    }
    sheet.PressOk();
  });
  const auto kept = group ? group->Commit() : platform::Failure(group.error());
  // The page says nothing if a setting could not be written.
  const Values stored = ReadValues(session, session.GetRegistry());
  PrintValues(session, stored, session.GetRegistry());
  const std::string path = session.GetRegistryName();
  if (!kept) {
    session.Fail(fmt::format("{}: the settings could not be stored: {}", path,
                             storage::ExplainRegistryError(kept.error())));
  } else if (stored != wanted) {
    session.Fail(fmt::format("{}: the settings could not be stored", path));
  }
}

}  // namespace

void AddConnectionCommands(CLI::App& app, Session& session) {
  CLI::App* group = app.add_subcommand(
      "connection", "The serial port of the dialer. Without a subcommand: open its window");
  group->require_subcommand(0, 1);
  group->callback([&session, group] {
    if (group->get_subcommands().empty()) {
      RunConnectionWindow(session, PreparePorts);
    }
  });

  group->add_subcommand("show", "Print the settings and the ports of this machine")
      ->callback([&session] { Show(session); });

  CLI::App* set = group->add_subcommand("set", "Change settings and store all of them");
  const auto arguments = std::make_shared<std::vector<std::string>>();
  set->add_option("settings", *arguments,
                  "port, baud-rate, data-bits, stop-bits, flow-control, bt-headset, no-hang-up")
      ->type_name("NAME=VALUE")
      ->required();
  set->callback([&session, arguments] { Set(session, *arguments); });
}

}  // namespace cli
