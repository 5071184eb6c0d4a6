#pragma once

#include <string_view>

namespace resources {

// Texts of dialogs that no language file has keys for. So they follow the language of the desktop.
// They do not grow, so a translation is hardly longer than the English.

// The connection settings.
inline constexpr std::u16string_view kConnectionGroup = u"Connection settings";
inline constexpr std::u16string_view kBaudRateLabel = u"Baud rate:";
inline constexpr std::u16string_view kDataBitsLabel = u"Data bits:";
inline constexpr std::u16string_view kStopBitsLabel = u"Stop bits:";
inline constexpr std::u16string_view kFlowControlLabel = u"Flow control:";
inline constexpr std::u16string_view kHeadsetLabel = u"Use BT headset for Ericsson phones only";
inline constexpr std::u16string_view kNoHangUpLabel = u"Don't Use HANG UP";
inline constexpr std::u16string_view kDefaultsLabel = u"Default";

// While voice tags are compared.
inline constexpr std::u16string_view kComparingLabel = u"Comparing the voice tags";
inline constexpr std::u16string_view kCancelComparing = u"Cancel";

}  // namespace resources
