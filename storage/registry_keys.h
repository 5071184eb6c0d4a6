#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace storage {

// The keys of the registry in which the system keeps its settings, and the names of the values. The
// companion dialer reads the same keys, so the names stand as they are, the misspelt one included.

/// Holds one subkey for each tag, named as the tag, and nothing else.
inline constexpr std::u16string_view kTagKey = u"Software\\Zedra\\Zedra Voxtrel";
inline constexpr std::u16string_view kContactValue = u"contact";
inline constexpr std::u16string_view kPhoneTypeValue = u"phone type";

/// Bytes that each of the two values is written with, however long its text is.
inline constexpr std::size_t kTagValueBytes = 100;

/// Returns the key of a tag.
[[nodiscard]] inline std::u16string EntryPath(std::u16string_view tagName) {
  return std::u16string(kTagKey).append(u"\\").append(tagName);
}

/// Made by the installation and never by the applet.
inline constexpr std::u16string_view kSetupKey = u"Software\\Zedra\\VoxtrelPEIni";

/// Decimal text: which speech mathematics computed the stored templates.
inline constexpr std::u16string_view kMathVersionValue = u"Version_Math";

/// The serial port of the companion dialer.
inline constexpr std::u16string_view kDialerKey = u"Software\\Zedra\\Zedra Dialer";
inline constexpr std::u16string_view kBaudRateValue = u"Bound_rate";
inline constexpr std::u16string_view kDataBitsValue = u"Data_bit";
inline constexpr std::u16string_view kStopBitsValue = u"Stop_bit";
inline constexpr std::u16string_view kFlowControlValue = u"Flow_control";
inline constexpr std::u16string_view kComPortValue = u"Com_port";
inline constexpr std::u16string_view kIsBluetoothValue = u"is_BT";
inline constexpr std::u16string_view kIsHangUpValue = u"is_HU";

/// Which address book is used, and which contact has which number. backends/vcard reads and writes
/// it.
inline constexpr std::u16string_view kContactNumbersKey = u"Software\\Zedra\\Voxtrel Contacts";

/// What the installation leaves in a new store: keys without values.
inline constexpr std::array kInstalledKeys{kSetupKey};

}  // namespace storage
