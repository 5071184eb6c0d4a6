#include "backends/wave_file/riff_file.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <limits>
#include <span>
#include <string_view>

#include "platform/file_system.h"

// Wave files from anywhere, and those that the loudspeaker's file becomes. The reader walks from
// chunk to chunk, as the format says. It is another one than the player's search, which is part of
// the documented behaviour.
namespace wave_file {
namespace {

using platform::LoadLittleEndian16;
using platform::LoadLittleEndian32;
using platform::WaveResult;

constexpr std::uint64_t kRiffHeaderBytes = 12;
constexpr std::uint64_t kChunkHeaderBytes = 8;
constexpr std::uint32_t kFormatBytes = 16;

// No honest file has more. A file made of empty chunks must not keep its reader busy.
constexpr int kMostChunks = 1000;

bool HasName(std::span<const std::byte> bytes, std::string_view name) {
  return std::memcmp(bytes.data(), name.data(), name.size()) == 0;
}

using Done = platform::Result<void, WaveResult>;

/// Returns the failure of a file that is no sound, or is not whole.
tl::unexpected<WaveResult> NoSound() { return platform::Failure(WaveResult::kBadFormat); }

Done ReadAt(platform::File& file, std::uint64_t offset, std::span<std::byte> into) {
  if (!file.Seek(offset) || file.Read(into) != into.size()) return NoSound();
  return {};
}

platform::Result<platform::WaveFormat, WaveResult> ReadFormat(platform::File& file,
                                                              std::uint64_t offset) {
  std::array<std::byte, kFormatBytes> bytes{};
  if (const auto read = ReadAt(file, offset, bytes); !read) return NoSound();
  const std::span<const std::byte, kFormatBytes> fields(bytes);
  platform::WaveFormat format;
  format.formatTag = LoadLittleEndian16(fields.subspan<0, 2>());
  format.channels = LoadLittleEndian16(fields.subspan<2, 2>());
  format.samplesPerSecond = LoadLittleEndian32(fields.subspan<4, 4>());
  format.averageBytesPerSecond = LoadLittleEndian32(fields.subspan<8, 4>());
  format.blockAlign = LoadLittleEndian16(fields.subspan<12, 2>());
  format.bitsPerSample = LoadLittleEndian16(fields.subspan<14, 2>());
  // What follows in a longer chunk says nothing about PCM.
  if (format.formatTag != platform::kFormatTagPcm || format.blockAlign == 0) return NoSound();
  return format;
}

/// The walk from chunk to chunk, which ends when it has seen a format and the data.
///
/// Each chunk has an identifier of four letters, a size, and as many bytes. So chunks that mean
/// nothing here are passed over. Offsets are 64 bits wide, so 32-bit sizes cannot make them wrap.
class ChunkWalk {
 public:
  ChunkWalk(platform::File& file, std::uint64_t length) : m_file(file), m_length(length) {}

  platform::Result<WaveFileLayout, WaveResult> Run() {
    Done taken;
    for (int i = 0; i < kMostChunks && taken && !(m_hasFormat && m_hasData); ++i) {
      taken = TakeChunk();
    }
    if (!m_hasFormat || !m_hasData) return NoSound();
    m_layout.dataBytes -= m_layout.dataBytes % m_layout.format.blockAlign;
    return m_layout;
  }

 private:
  /// Takes the chunk at the offset. Fails if it does not lie within the file, or if it is a format
  /// that cannot be played.
  Done TakeChunk() {
    std::array<std::byte, kChunkHeaderBytes> header{};
    if (m_offset + kChunkHeaderBytes > m_length || !ReadAt(m_file, m_offset, header)) {
      return NoSound();
    }
    const std::span<const std::byte, kChunkHeaderBytes> fields(header);
    const std::uint64_t size = LoadLittleEndian32(fields.last<4>());
    const std::uint64_t body = m_offset + kChunkHeaderBytes;
    const std::uint64_t rest = m_length - body;
    // A chunk of odd size is followed by a byte that belongs to none.
    m_offset = body + size + size % 2;
    if (!m_hasData && HasName(fields, "data")) {
      m_layout.dataOffset = body;
      m_layout.dataBytes = std::min(size, rest);
      m_hasData = true;
      return {};
    }
    if (size > rest) return NoSound();
    if (!m_hasFormat && HasName(fields, "fmt ")) return TakeFormat(body, size);
    return {};
  }

  Done TakeFormat(std::uint64_t body, std::uint64_t size) {
    if (size < kFormatBytes) return NoSound();
    const auto format = ReadFormat(m_file, body);
    if (!format) return NoSound();
    m_layout.format = *format;
    m_hasFormat = true;
    return {};
  }

  platform::File& m_file;
  const std::uint64_t m_length;
  std::uint64_t m_offset = kRiffHeaderBytes;
  WaveFileLayout m_layout;
  bool m_hasFormat = false;
  bool m_hasData = false;
};

constexpr std::size_t kHeaderBytes = 44;
constexpr std::uint32_t kBytesAfterRiffSize = kHeaderBytes - 8;

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
  Put32(header, 4, kBytesAfterRiffSize + dataBytes + padding);
  PutId(header, 8, "WAVE");
  PutId(header, 12, "fmt ");
  Put32(header, 16, kFormatBytes);
  Put16(header, 20, format.formatTag);
  Put16(header, 22, format.channels);
  Put32(header, 24, format.samplesPerSecond);
  // Not the format's own average: players are known to fill in something else.
  Put32(header, 28, format.samplesPerSecond * format.blockAlign);
  Put16(header, 32, format.blockAlign);
  Put16(header, 34, format.bitsPerSample);
  PutId(header, 36, "data");
  Put32(header, 40, dataBytes);
  return header;
}

}  // namespace

platform::Result<WaveFileLayout, WaveResult> ReadWaveFileLayout(platform::File& file) {
  const auto length = file.GetLength();
  std::array<std::byte, kRiffHeaderBytes> header{};
  if (!length || !ReadAt(file, 0, header)) return NoSound();
  const std::span<const std::byte> fields(header);
  if (!HasName(fields, "RIFF") || !HasName(fields.subspan(8), "WAVE")) {
    return NoSound();
  }
  return ChunkWalk(file, *length).Run();
}

platform::Result<void, WaveResult> WriteWaveFile(platform::File& file,
                                                 const platform::WaveFormat& format,
                                                 std::span<const std::byte> samples) {
  // A chunk of odd size is followed by a byte that belongs to none.
  const std::size_t padding = samples.size() % 2;
  if (samples.size() > std::numeric_limits<std::uint32_t>::max() - kBytesAfterRiffSize - padding) {
    return platform::Failure(WaveResult::kFailed);
  }
  const Header header = MakeHeader(format, static_cast<std::uint32_t>(samples.size()),
                                   static_cast<std::uint32_t>(padding));
  constexpr std::array<std::byte, 1> kPadding{};
  if (!file.Write(header) || !file.Write(samples) ||
      !file.Write(std::span(kPadding).first(padding))) {
    return platform::Failure(WaveResult::kFailed);
  }
  return {};
}

}  // namespace wave_file
