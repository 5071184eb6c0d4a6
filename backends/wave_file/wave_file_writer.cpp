#include "backends/wave_file/wave_file_writer.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <string_view>

#include "platform/little_endian.h"

namespace wave_file {
namespace {

constexpr std::size_t kHeaderBytes = 44;
constexpr std::uint32_t kBytesBehindRiffSize = kHeaderBytes - 8;
constexpr std::uint32_t kFormatChunkBytes = 16;

using Header = std::array<std::byte, kHeaderBytes>;

std::span<std::byte> At(Header& header, std::size_t offset) {
  return std::span(header).subspan(offset);
}

void PutId(Header& header, std::size_t offset, std::string_view id) {
  std::ranges::copy(std::as_bytes(std::span(id)), At(header, offset).begin());
}

void Put16(Header& header, std::size_t offset, std::uint16_t number) {
  platform::StoreLittleEndian16(At(header, offset).first<2>(), number);
}

void Put32(Header& header, std::size_t offset, std::uint32_t number) {
  platform::StoreLittleEndian32(At(header, offset).first<4>(), number);
}

Header MakeHeader(const platform::WaveFormat& format, std::uint32_t dataBytes,
                  std::uint32_t padding) {
  Header header{};
  PutId(header, 0, "RIFF");
  Put32(header, 4, kBytesBehindRiffSize + dataBytes + padding);
  PutId(header, 8, "WAVE");
  PutId(header, 12, "fmt ");
  Put32(header, 16, kFormatChunkBytes);
  Put16(header, 20, format.formatTag);
  Put16(header, 22, format.channels);
  Put32(header, 24, format.samplesPerSecond);
  // Of the format's own average nobody knows what it is.
  Put32(header, 28, format.samplesPerSecond * format.blockAlign);
  Put16(header, 32, format.blockAlign);
  Put16(header, 34, format.bitsPerSample);
  PutId(header, 36, "data");
  Put32(header, 40, dataBytes);
  return header;
}

}  // namespace

bool WriteWaveFile(platform::File& file, const platform::WaveFormat& format,
                   std::span<const std::byte> samples) {
  // A chunk of odd size is followed by a byte that belongs to none.
  const std::size_t padding = samples.size() % 2;
  if (samples.size() > std::numeric_limits<std::uint32_t>::max() - kBytesBehindRiffSize - padding) {
    return false;
  }
  const Header header = MakeHeader(format, static_cast<std::uint32_t>(samples.size()),
                                   static_cast<std::uint32_t>(padding));
  constexpr std::array<std::byte, 1> kPadding{};
  return file.Write(header) == platform::FileError::kNone &&
         file.Write(samples) == platform::FileError::kNone &&
         file.Write(std::span(kPadding).first(padding)) == platform::FileError::kNone;
}

}  // namespace wave_file
