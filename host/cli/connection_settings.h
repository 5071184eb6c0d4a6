#pragma once

#include <array>
#include <string>
#include <string_view>

#include "resources/dialogs.h"
#include "storage/registry_keys.h"

namespace cli {

/// A setting of the connection page, by the name that users type. They may also type the name under
/// which it is stored.
struct ConnectionSetting {
  std::string_view name;
  std::string_view jsonName;
  std::u16string_view storedName;
  int control;
  bool isCheck;
};

inline constexpr std::array<ConnectionSetting, 7> kConnectionSettings{{
    {"port", "port", storage::kComPortValue, resources::kPortComboId, false},
    {"baud-rate", "baudRate", storage::kBaudRateValue, resources::kBaudRateComboId, false},
    {"data-bits", "dataBits", storage::kDataBitsValue, resources::kDataBitsComboId, false},
    {"stop-bits", "stopBits", storage::kStopBitsValue, resources::kStopBitsComboId, false},
    {"flow-control", "flowControl", storage::kFlowControlValue, resources::kFlowControlComboId,
     false},
    {"bt-headset", "btHeadset", storage::kIsBluetoothValue, resources::kHeadsetCheckId, true},
    {"no-hang-up", "noHangUp", storage::kIsHangUpValue, resources::kNoHangUpCheckId, true},
}};

/// A setting and what it shall be.
struct ConnectionChange {
  const ConnectionSetting* setting;
  std::u16string value;    ///< What stands in the field of a list.
  bool isChecked = false;  ///< Of a check box.
};

/// Reads "NAME=VALUE". Throws CLI::ValidationError if the argument is no such pair, or if the
/// setting cannot have that value. The error names the values that it can have.
[[nodiscard]] ConnectionChange ParseConnectionChange(const std::string& argument);

}  // namespace cli
