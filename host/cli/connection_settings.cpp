#include "host/cli/connection_settings.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstddef>
#include <optional>
#include <span>

#include "backends/text/names.h"
#include "backends/text/utf.h"
#include "connection/connection_page.h"

// The settings of the dialer's serial port as words: what may be typed for each, and what it stands
// for on the page.
namespace cli {
namespace {

constexpr std::string_view kPorts = "COM1: to COM99:";
constexpr std::string_view kCheckValues = "1 or 0 (yes or no, on or off, true or false)";

const ConnectionSetting* FindSetting(std::string_view name) {
  const auto found =
      std::ranges::find_if(kConnectionSettings, [name](const ConnectionSetting& setting) {
        // The name of the command line, or the one in the registry, which people find in exported
        // files.
        return setting.name == name || text::SameName(setting.storedName, text::FromUtf8(name));
      });
  return found == kConnectionSettings.end() ? nullptr : &*found;
}

std::span<const std::u16string_view> ChoicesOf(int control) {
  switch (control) {
    case resources::kBaudRateComboId:
      return connection::kBaudRates;
    case resources::kDataBitsComboId:
      return connection::kDataBits;
    case resources::kStopBitsComboId:
      return connection::kStopBits;
    default:
      return connection::kFlowControls;
  }
}

std::optional<std::u16string> ParseChoice(int control, std::u16string_view value) {
  const auto choices = ChoicesOf(control);
  const auto found = std::ranges::find(choices, value);
  return found == choices.end() ? std::nullopt : std::optional(std::u16string(*found));
}

/// Returns the name of a port that was typed in any letter case, with the colon or without it. The
/// port may be unplugged.
std::optional<std::u16string> ParsePort(std::u16string_view value) {
  constexpr std::u16string_view kStart = u"COM";
  if (value.ends_with(u':')) {
    value.remove_suffix(1);
  }
  if (!text::SameName(value.substr(0, kStart.size()), kStart)) {
    return std::nullopt;
  }
  const std::u16string_view digits = value.substr(kStart.size());
  const bool isNumber =
      !digits.empty() && digits.size() <= 2 && digits.front() != u'0' &&
      std::ranges::all_of(digits, [](char16_t c) { return c >= u'0' && c <= u'9'; });
  return isNumber ? std::optional(std::u16string(kStart).append(digits) + u':') : std::nullopt;
}

std::optional<bool> ParseCheck(std::string_view value) {
  constexpr std::array<std::string_view, 4> kYes{"1", "yes", "on", "true"};
  constexpr std::array<std::string_view, 4> kNo{"0", "no", "off", "false"};
  if (std::ranges::find(kYes, value) != kYes.end()) {
    return true;
  }
  return std::ranges::find(kNo, value) != kNo.end() ? std::optional(false) : std::nullopt;
}

std::string Offer(const ConnectionSetting& setting) {
  if (setting.isCheck) {
    return std::string(kCheckValues);
  }
  if (setting.control == resources::kPortComboId) {
    return std::string(kPorts);
  }
  std::string offered;
  for (const std::u16string_view choice : ChoicesOf(setting.control)) {
    offered.append(offered.empty() ? "" : ", ").append(text::ToUtf8(choice));
  }
  return offered;
}

std::string NamesOfSettings() {
  std::string names;
  for (const ConnectionSetting& known : kConnectionSettings) {
    names.append(names.empty() ? "" : ", ").append(known.name);
  }
  return names;
}

}  // namespace

// The window lets any text be typed as a port. A script has nobody who sees a mistyped one, so here
// only the values of the window's lists count, and the names that a port can have.
ConnectionChange ParseConnectionChange(const std::string& argument) {
  const std::size_t equals = argument.find('=');
  const ConnectionSetting* setting = FindSetting(std::string_view(argument).substr(0, equals));
  if (setting == nullptr || equals == std::string::npos) {
    throw CLI::ValidationError(argument, "not NAME=VALUE; the names are: " + NamesOfSettings());
  }
  const std::string value = argument.substr(equals + 1);
  if (setting->isCheck) {
    if (const auto isChecked = ParseCheck(value)) {
      return {setting, u"", *isChecked};
    }
  } else if (const auto parsed = setting->control == resources::kPortComboId
                                     ? ParsePort(text::FromUtf8(value))
                                     : ParseChoice(setting->control, text::FromUtf8(value))) {
    return {setting, *parsed, false};
  }
  throw CLI::ValidationError(argument,
                             fmt::format("{} is {}{}", setting->name,
                                         setting->isCheck ? "" : "one of: ", Offer(*setting)));
}

}  // namespace cli
