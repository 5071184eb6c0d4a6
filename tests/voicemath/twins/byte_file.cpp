#include "tests/voicemath/twins/byte_file.h"

#include <cstring>

namespace twins {

void ByteFile::Read(std::span<std::byte> into) {
  for (std::byte& byte : into) {
    if (m_position >= m_bytes.size()) {
      return;
    }
    byte = m_bytes[static_cast<std::size_t>(m_position)];
    ++m_position;
  }
}

void ByteFile::Write(std::span<const std::byte> bytes) {
  if (bytes.empty()) {
    return;
  }
  const std::uint64_t end = m_position + bytes.size();
  if (end > m_bytes.size()) {
    m_bytes.resize(static_cast<std::size_t>(end));
  }
  for (const std::byte byte : bytes) {
    m_bytes[static_cast<std::size_t>(m_position)] = byte;
    ++m_position;
  }
}

void ByteFile::SetLength(std::uint64_t length) { m_bytes.resize(static_cast<std::size_t>(length)); }

std::uint16_t Unsigned16At(std::span<const std::byte> bytes, std::size_t offset) {
  const unsigned low = std::to_integer<unsigned>(bytes[offset]);
  const unsigned high = std::to_integer<unsigned>(bytes[offset + 1]);
  return static_cast<std::uint16_t>(low | (high << 8U));
}

std::uint32_t Unsigned32At(std::span<const std::byte> bytes, std::size_t offset) {
  const std::uint32_t low = Unsigned16At(bytes, offset);
  const std::uint32_t high = Unsigned16At(bytes, offset + 2);
  return low | (high << 16U);
}

std::int16_t SampleAt(std::span<const std::byte> bytes, std::size_t index) {
  return static_cast<std::int16_t>(Unsigned16At(bytes, 2 * index));
}

bool TextAt(std::span<const std::byte> bytes, std::size_t offset, const char* text) {
  return std::memcmp(bytes.data() + offset, text, std::strlen(text)) == 0;
}

void Append16(Bytes& bytes, std::uint16_t value) {
  bytes.push_back(static_cast<std::byte>(value & 0xFFU));
  bytes.push_back(static_cast<std::byte>(value >> 8U));
}

void Append32(Bytes& bytes, std::uint32_t value) {
  Append16(bytes, static_cast<std::uint16_t>(value & 0xFFFFU));
  Append16(bytes, static_cast<std::uint16_t>(value >> 16U));
}

void AppendText(Bytes& bytes, const char* text) {
  for (; *text != '\0'; ++text) {
    bytes.push_back(static_cast<std::byte>(*text));
  }
}

}  // namespace twins
