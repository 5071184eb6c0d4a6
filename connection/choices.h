#pragma once

#include <array>
#include <string_view>

namespace connection {

// What the lists of the page offer, in their order, and what stands there where nothing was stored.
// The dialer knows these words.

inline constexpr std::array<std::u16string_view, 15> kBaudRates{
    u"256000", u"128000", u"115200", u"57600", u"56000", u"38400", u"19200", u"14400",
    u"9600",   u"4800",   u"2400",   u"1200",  u"600",   u"300",   u"110"};
inline constexpr std::array<std::u16string_view, 5> kDataBits{u"4", u"5", u"6", u"7", u"8"};
inline constexpr std::array<std::u16string_view, 3> kStopBits{u"1", u"1.5", u"2"};
inline constexpr std::array<std::u16string_view, 3> kFlowControls{u"hardware", u"software",
                                                                  u"none"};

inline constexpr std::u16string_view kDefaultBaudRate = u"9600";
inline constexpr std::u16string_view kDefaultDataBits = u"8";
inline constexpr std::u16string_view kDefaultStopBits = u"1";
inline constexpr std::u16string_view kDefaultFlowControl = u"none";
inline constexpr std::u16string_view kDefaultPort = u"COM2:";

/// How a check box is stored.
inline constexpr std::u16string_view kChecked = u"1";
inline constexpr std::u16string_view kUnchecked = u"0";

}  // namespace connection
