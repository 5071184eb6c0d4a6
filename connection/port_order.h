#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace connection {

/// Two names are never equal here.
enum class PortOrder : std::uint8_t { kLess, kGreater };

/// Compares names of serial ports, as "COM2:" and "COM10:": first by their first character, then by
/// their number. Of two equal names the first counts as less.
[[nodiscard]] PortOrder ComparePorts(std::u16string_view a, std::u16string_view b);

/// Sorts names downwards, the highest port first.
void SortPorts(std::vector<std::u16string>& names);

}  // namespace connection
