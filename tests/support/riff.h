#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "platform/file_system.h"
#include "platform/wave_devices.h"

namespace support {

using RiffBytes = std::vector<std::byte>;

inline void AppendText(RiffBytes& to, std::string_view text) {
  const auto bytes = std::as_bytes(std::span(text));
  to.insert(to.end(), bytes.begin(), bytes.end());
}

inline void Append16(RiffBytes& to, std::uint16_t number) {
  std::array<std::byte, 2> bytes{};
  platform::StoreLittleEndian16(bytes, number);
  to.insert(to.end(), bytes.begin(), bytes.end());
}

inline void Append32(RiffBytes& to, std::uint32_t number) {
  std::array<std::byte, 4> bytes{};
  platform::StoreLittleEndian32(bytes, number);
  to.insert(to.end(), bytes.begin(), bytes.end());
}

/// A chunk with its padding. `claimedSize` is for chunks that lie about their size.
[[nodiscard]] inline RiffBytes Chunk(std::string_view name, std::span<const std::byte> body,
                                     std::optional<std::uint32_t> claimedSize = std::nullopt) {
  RiffBytes chunk;
  AppendText(chunk, name);
  Append32(chunk, claimedSize.value_or(static_cast<std::uint32_t>(body.size())));
  chunk.insert(chunk.end(), body.begin(), body.end());
  if (body.size() % 2 != 0) chunk.push_back(std::byte{0});
  return chunk;
}

/// The 16 bytes that a format chunk has for PCM.
[[nodiscard]] inline RiffBytes FormatBody(const platform::WaveFormat& format) {
  RiffBytes body;
  Append16(body, format.formatTag);
  Append16(body, format.channels);
  Append32(body, format.samplesPerSecond);
  Append32(body, format.averageBytesPerSecond);
  Append16(body, format.blockAlign);
  Append16(body, format.bitsPerSample);
  return body;
}

[[nodiscard]] inline RiffBytes RiffWave(std::initializer_list<RiffBytes> chunks) {
  RiffBytes body;
  AppendText(body, "WAVE");
  for (const RiffBytes& chunk : chunks) body.insert(body.end(), chunk.begin(), chunk.end());
  return Chunk("RIFF", body);
}

[[nodiscard]] inline RiffBytes RiffWave(const platform::WaveFormat& format,
                                        std::span<const std::byte> samples) {
  return RiffWave({Chunk("fmt ", FormatBody(format)), Chunk("data", samples)});
}

}  // namespace support
