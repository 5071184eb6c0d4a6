#pragma once

#include <array>
#include <string>
#include <string_view>

#include "resources/dialogs.h"
#include "storage/registry_keys.h"

namespace cli {

/// A setting of the connection page as users name it. The name that the dialer reads means the
/// same.
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

/// Reads "NAME=VALUE". What is not that, or no value that the setting can have, is thrown as
/// CLI::ValidationError, which names what it can be.
[[nodiscard]] ConnectionChange ParseConnectionChange(const std::string& argument);

}  // namespace cli
