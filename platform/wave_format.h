#pragma once

#include <cstddef>
#include <cstdint>

namespace platform {

/// Format of a wave stream, field by field the record that wave devices take.
struct WaveFormat {
  std::uint16_t formatTag = 0;  ///< 1 is PCM.
  std::uint16_t channels = 0;
  std::uint32_t samplesPerSecond = 0;
  std::uint32_t averageBytesPerSecond = 0;
  std::uint16_t blockAlign = 0;  ///< Bytes of one sample of all channels.
  std::uint16_t bitsPerSample = 0;
  std::uint16_t extraSize = 0;

  friend bool operator==(const WaveFormat&, const WaveFormat&) = default;
};

inline constexpr std::uint16_t kFormatTagPcm = 1;

/// Whether this is PCM whose fields agree with each other: a rate, channels, and whole bytes for
/// each sample. The average of bytes per second is not looked at; players are known to fill in
/// something else.
[[nodiscard]] constexpr bool IsWholeBytePcm(const WaveFormat& format) {
  return format.formatTag == kFormatTagPcm && format.channels > 0 && format.samplesPerSecond > 0 &&
         format.bitsPerSample > 0 && format.bitsPerSample % 8 == 0 &&
         format.blockAlign == format.channels * (format.bitsPerSample / 8);
}

/// One buffer on its way through a wave device. The caller owns the memory.
struct WaveHeader {
  std::byte* data = nullptr;
  std::uint32_t bufferLength = 0;   ///< Bytes.
  std::uint32_t bytesRecorded = 0;  ///< Input only: how many bytes of `data` the device has filled.
  std::uint32_t flags = 0;
};

inline constexpr std::uint32_t kWaveHeaderPrepared = 2;

/// What an operation of a wave device returns. The values mirror the codes of wave devices, of
/// which kStillPlaying is no failure but an answer; so kOk stands among them.
enum class WaveResult : std::uint8_t {
  kOk,
  kNoDevice,      ///< No device, no server, or it went away.
  kBadFormat,     ///< The device cannot take this format.
  kStillPlaying,  ///< The buffer is in use: not yet full, or not yet played to its end.
  kNotPrepared,
  kFailed,
};

}  // namespace platform
