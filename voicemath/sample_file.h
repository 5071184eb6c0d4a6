#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "framework/file.h"
#include "platform/file_system.h"

namespace voicemath {

inline constexpr std::size_t kSampleBytes = 2;

/// Reads at `offset` of an open file. Returns the number of bytes read. If the file ends before,
/// the rest of `into` stays as it was.
[[nodiscard]] inline platform::Result<std::size_t, platform::FileError> ReadAt(
    framework::CFile& file, std::uint64_t offset, std::span<std::byte> into) {
  return file.Seek(offset).and_then([&] { return file.Read(into); });
}

/// Samples of a wave file, zeros at first. The bytes are kept as the file holds them: a read at the
/// end of the file may stop in the middle of a sample, and must leave the rest as it was.
template <std::size_t kCount>
class SampleBuffer {
 public:
  [[nodiscard]] std::span<std::byte, kCount * kSampleBytes> Bytes() { return m_bytes; }

  [[nodiscard]] std::span<const std::int16_t, kCount> Decode() {
    const std::span<const std::byte> bytes(m_bytes);
    for (std::size_t i = 0; i < kCount; ++i) {
      m_samples[i] = static_cast<std::int16_t>(
          platform::LoadLittleEndian16(bytes.subspan(i * kSampleBytes).first<kSampleBytes>()));
    }
    return m_samples;
  }

 private:
  std::array<std::byte, kCount * kSampleBytes> m_bytes{};
  std::array<std::int16_t, kCount> m_samples{};
};

}  // namespace voicemath
