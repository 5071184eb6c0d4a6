#include "audio/wave_header.h"

#include <algorithm>
#include <span>
#include <string_view>

#include "platform/file_system.h"

// The header of every wave file that the system writes: 44 bytes, in the order of the fields below.
namespace audio {
namespace {

constexpr std::uint32_t kFormatChunkBytes = 16;

/// Writes the fields of the header one after the other.
class FieldWriter {
 public:
  explicit FieldWriter(std::span<std::byte, kWaveHeaderBytes> to) : m_rest(to) {}

  void Id(std::string_view id) {
    std::transform(id.begin(), id.end(), m_rest.begin(),
                   [](char letter) { return static_cast<std::byte>(letter); });
    m_rest = m_rest.subspan(id.size());
  }

  void Number16(std::uint16_t value) {
    platform::StoreLittleEndian16(m_rest.first<2>(), value);
    m_rest = m_rest.subspan(2);
  }

  void Number32(std::uint32_t value) {
    platform::StoreLittleEndian32(m_rest.first<4>(), value);
    m_rest = m_rest.subspan(4);
  }

 private:
  std::span<std::byte> m_rest;
};

}  // namespace

platform::WaveFormat MonoPcm(std::uint16_t bits, std::uint32_t samplesPerSecond) {
  const auto blockAlign = static_cast<std::uint16_t>(bits / 8);
  return {.formatTag = platform::kFormatTagPcm,
          .channels = 1,
          .samplesPerSecond = samplesPerSecond,
          .averageBytesPerSecond = blockAlign * samplesPerSecond,
          .blockAlign = blockAlign,
          .bitsPerSample = bits,
          .extraSize = 0};
}

std::array<std::byte, kWaveHeaderBytes> MakeWaveHeader(const platform::WaveFormat& format,
                                                       std::uint32_t dataBytes) {
  // Computed again: of `format` only channels, rate and bits are used.
  const auto blockAlign = static_cast<std::uint16_t>(format.bitsPerSample * format.channels / 8);
  std::array<std::byte, kWaveHeaderBytes> header{};
  FieldWriter fields(header);
  fields.Id("RIFF");
  fields.Number32(dataBytes + static_cast<std::uint32_t>(kWaveHeaderBytes));
  fields.Id("WAVE");
  fields.Id("fmt ");
  fields.Number32(kFormatChunkBytes);
  fields.Number16(platform::kFormatTagPcm);
  fields.Number16(format.channels);
  fields.Number32(format.samplesPerSecond);
  fields.Number32(blockAlign * format.samplesPerSecond);
  fields.Number16(blockAlign);
  fields.Number16(format.bitsPerSample);
  fields.Id("data");
  fields.Number32(dataBytes);
  return header;
}

}  // namespace audio
