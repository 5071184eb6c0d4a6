#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace twins {

using Bytes = std::vector<std::byte>;

/// A file held in memory, with a position.
class ByteFile {
 public:
  explicit ByteFile(Bytes bytes) : m_bytes(std::move(bytes)) {}

  [[nodiscard]] std::uint64_t Length() const { return m_bytes.size(); }
  [[nodiscard]] const Bytes& Content() const { return m_bytes; }

  /// The position may lie after the end.
  void Seek(std::uint64_t offset) { m_position = offset; }

  /// Reads what is there, at most `into.size()` bytes; the rest of `into` stays as it was.
  void Read(std::span<std::byte> into);

  /// A gap between the end and the position is filled with zeros, unless there is nothing to write.
  void Write(std::span<const std::byte> bytes);

  void SetLength(std::uint64_t length);

 private:
  Bytes m_bytes;
  std::uint64_t m_position = 0;
};

/// Little-endian values at a place of a buffer.
[[nodiscard]] std::uint16_t Unsigned16At(std::span<const std::byte> bytes, std::size_t offset);
[[nodiscard]] std::uint32_t Unsigned32At(std::span<const std::byte> bytes, std::size_t offset);
[[nodiscard]] std::int16_t SampleAt(std::span<const std::byte> bytes, std::size_t index);
[[nodiscard]] bool TextAt(std::span<const std::byte> bytes, std::size_t offset, const char* text);

void Append16(Bytes& bytes, std::uint16_t value);
void Append32(Bytes& bytes, std::uint32_t value);
void AppendText(Bytes& bytes, const char* text);

}  // namespace twins
