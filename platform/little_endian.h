#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace platform {

inline void StoreLittleEndian16(std::span<std::byte, 2> to, std::uint16_t value) {
  to[0] = static_cast<std::byte>(value & 0xFFU);
  to[1] = static_cast<std::byte>(value >> 8U);
}

inline void StoreLittleEndian32(std::span<std::byte, 4> to, std::uint32_t value) {
  StoreLittleEndian16(to.first<2>(), static_cast<std::uint16_t>(value & 0xFFFFU));
  StoreLittleEndian16(to.last<2>(), static_cast<std::uint16_t>(value >> 16U));
}

[[nodiscard]] inline std::uint16_t LoadLittleEndian16(std::span<const std::byte, 2> from) {
  return static_cast<std::uint16_t>(std::to_integer<unsigned>(from[0]) |
                                    std::to_integer<unsigned>(from[1]) << 8U);
}

[[nodiscard]] inline std::uint32_t LoadLittleEndian32(std::span<const std::byte, 4> from) {
  return LoadLittleEndian16(from.first<2>()) |
         static_cast<std::uint32_t>(LoadLittleEndian16(from.last<2>())) << 16U;
}

}  // namespace platform
