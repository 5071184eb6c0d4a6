#include "host/cli/connection_commands.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "connection/active_ports.h"
#include "connection/connection_sheet.h"
#include "host/cli/output.h"
#include "host/cli/page_run.h"
#include "platform/text/names.h"
#include "platform/text/utf.h"
#include "platform/udev/serial_ports.h"
#include "platform/udev/udev_serial_devices.h"
#include "resources/dialogs.h"
#include "resources/strings.h"
#include "storage/registry_file.h"
#include "storage/registry_keys.h"

namespace cli {
namespace {

/// A setting as users name it. The name that the dialer reads means the same.
struct Setting {
  std::string_view name;
  std::string_view jsonName;
  std::u16string_view storedName;
  int control;
  bool isCheck;
};

constexpr std::array<Setting, 7> kSettings{{
    {"port", "port", storage::kComPortValue, resources::kPortComboId, false},
    {"baud-rate", "baudRate", storage::kBaudRateValue, resources::kBaudRateComboId, false},
    {"data-bits", "dataBits", storage::kDataBitsValue, resources::kDataBitsComboId, false},
    {"stop-bits", "stopBits", storage::kStopBitsValue, resources::kStopBitsComboId, false},
    {"flow-control", "flowControl", storage::kFlowControlValue, resources::kFlowControlComboId,
     false},
    {"bt-headset", "btHeadset", storage::kIsBluetoothValue, resources::kHeadsetCheckId, true},
    {"no-hang-up", "noHangUp", storage::kIsHangUpValue, resources::kNoHangUpCheckId, true},
}};

struct Change {
  const Setting* setting;
  std::string value;
};

using Values = std::vector<std::string>;

std::string ValueOf(const headless::HeadlessDialog& dialog, const Setting& setting) {
  return setting.isCheck ? (dialog.IsChecked(setting.control) ? "1" : "0")
                         : text::ToUtf8(dialog.GetText(setting.control));
}

const Setting* FindSetting(std::string_view name) {
  const auto found = std::ranges::find_if(kSettings, [name](const Setting& setting) {
    return setting.name == name || text::SameName(setting.storedName, text::FromUtf8(name));
  });
  return found == kSettings.end() ? nullptr : &*found;
}

Change ParseChange(const std::string& argument) {
  const std::size_t equals = argument.find('=');
  const Setting* setting = FindSetting(std::string_view(argument).substr(0, equals));
  if (setting == nullptr || equals == std::string::npos) {
    std::string names;
    for (const Setting& known : kSettings) {
      names.append(names.empty() ? "" : ", ").append(known.name);
    }
    throw CLI::ValidationError(argument, "not NAME=VALUE; the names are: " + names);
  }
  return {setting, argument.substr(equals + 1)};
}

/// Makes the ports that the machine has now known to the page; false where there is no store.
bool PreparePorts(Session& session) {
  platform::Registry& registry = session.GetRegistry();
  if (const auto root = registry.OpenKey(u""); !root.key) {
    session.Fail(fmt::format("{}: {}", session.GetRegistryPath().native(),
                             storage::ExplainRegistryError(root.error)));
    return false;
  }
  udev_ports::UdevSerialDevices devices;
  // Where that fails the ports are those of last time.
  static_cast<void>(udev_ports::PublishSerialPorts(registry, devices));
  return true;
}

/// Opens the page without a window and hands it to `use`.
void RunWithoutWindow(Session& session, const std::function<void(headless::HeadlessSheet&)>& use) {
  session.GetUi().SetSheetStory(use);
  connection::RunConnectionSheet(session.GetUi(), session.GetRegistry(),
                                 LoadTexts(session)(resources::kSheetCaption));
}

Values ReadValues(Session& session) {
  Values values;
  RunWithoutWindow(session, [&values](headless::HeadlessSheet& sheet) {
    for (const Setting& setting : kSettings) {
      values.push_back(ValueOf(*sheet.ShowPage(0), setting));
    }
  });
  return values;
}

void PrintValues(Session& session, const Values& values) {
  const auto ports = connection::ReadActivePorts(session.GetRegistry());
  if (!session.GetOptions().json) {
    for (std::size_t i = 0; i < kSettings.size(); ++i) {
      PrintLine(fmt::format("{:<13}{}", kSettings[i].name, values[i]));
    }
    for (const connection::ActivePort& port : ports) {
      PrintLine(fmt::format("{:<13}is {}", text::ToUtf8(port.name), text::ToUtf8(port.device)));
    }
    return;
  }
  Json json;
  for (std::size_t i = 0; i < kSettings.size(); ++i) {
    json[std::string(kSettings[i].jsonName)] =
        kSettings[i].isCheck ? Json(values[i] == "1") : Json(values[i]);
  }
  json["ports"] = Json::array();
  for (const connection::ActivePort& port : ports) {
    json["ports"].push_back(
        {{"name", text::ToUtf8(port.name)}, {"device", text::ToUtf8(port.device)}});
  }
  PrintJson(json);
}

void Show(Session& session) {
  if (PreparePorts(session)) {
    PrintValues(session, ReadValues(session));
  }
}

std::optional<bool> ParseCheck(const std::string& value) {
  if (value == "1" || value == "yes" || value == "on") {
    return true;
  }
  return value == "0" || value == "no" || value == "off" ? std::optional(false) : std::nullopt;
}

/// Does to the page what the user asks for; what is wrong with that, or an empty text.
std::string ApplyCheck(headless::HeadlessDialog& dialog, const Change& change) {
  const std::optional<bool> wanted = ParseCheck(change.value);
  if (!wanted) {
    return fmt::format("{} is 1 or 0", change.setting->name);
  }
  if (dialog.IsChecked(change.setting->control) != *wanted) {
    dialog.Press(change.setting->control);
  }
  return "";
}

std::string Apply(headless::HeadlessDialog& dialog, const Change& change) {
  if (change.setting->isCheck) {
    return ApplyCheck(dialog, change);
  }
  const int control = change.setting->control;
  const std::vector<std::u16string> items = dialog.GetItems(control);
  const std::u16string wanted = text::FromUtf8(change.value);
  if (const auto item = std::ranges::find(items, wanted); item != items.end()) {
    dialog.Choose(control, static_cast<int>(item - items.begin()));
    return "";
  }
  // A port may be one that is unplugged now.
  if (control == resources::kPortComboId && connection::IsPortName(wanted)) {
    dialog.Type(control, wanted);
    return "";
  }
  std::string offered = control == resources::kPortComboId ? "COM0: to COM99:" : "";
  for (const std::u16string& item : items) {
    offered.append(offered.empty() ? "" : ", ").append(text::ToUtf8(item));
  }
  return fmt::format("{} is one of: {}", change.setting->name, offered);
}

void Set(Session& session, const std::vector<std::string>& arguments) {
  std::vector<Change> changes;
  std::ranges::transform(arguments, std::back_inserter(changes), ParseChange);
  if (!PreparePorts(session)) {
    return;
  }
  Values wanted;
  std::string problem;
  RunWithoutWindow(session, [&](headless::HeadlessSheet& sheet) {
    headless::HeadlessDialog& dialog = *sheet.ShowPage(0);
    for (const Change& change : changes) {
      problem = Apply(dialog, change);
      if (!problem.empty()) {
        return;
      }
    }
    for (const Setting& setting : kSettings) {
      wanted.push_back(ValueOf(dialog, setting));
    }
    sheet.PressOk();
  });
  if (!problem.empty()) {
    session.Fail(problem);
    return;
  }
  // The page says nothing where a setting could not be written.
  const Values stored = ReadValues(session);
  PrintValues(session, stored);
  if (stored != wanted) {
    session.Fail(
        fmt::format("{}: not all settings could be stored", session.GetRegistryPath().native()));
  }
}

/// Where there is no window the page is still reached by the two subcommands.
void OpenSheet(Session& session) {
  session.Fail(
      "there is no window here; see `voxtrel connection show` and `voxtrel connection set`");
}

}  // namespace

void AddConnectionCommands(CLI::App& app, Session& session) {
  CLI::App* group = app.add_subcommand("connection", "The serial port of the dialer");
  group->require_subcommand(0, 1);
  group->callback([&session, group] {
    if (group->get_subcommands().empty()) {
      OpenSheet(session);
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
