#include "framework/archive.h"

#include <algorithm>
#include <array>
#include <bit>

#include "platform/file_system.h"

// Reads and writes values one after the other, little-endian on every machine, through a buffer.
// That is the form of the template files, which the companion reads.
namespace framework {

CArchive::CArchive(CFile& file, Mode mode, std::size_t bufferSize)
    : m_file(file), m_mode(mode), m_buffer(std::max<std::size_t>(bufferSize, 1)) {}

// The first failure stays, as in a chain of reads and writes only that one says what went wrong.
// After it nothing is read or written any more, so callers look at the status once, at the end.
void CArchive::Fail(ArchiveError error) {
  if (m_status) {
    m_status = platform::Failure(error);
  }
}

CArchive& CArchive::operator<<(std::uint16_t value) {
  std::array<std::byte, 2> bytes{};
  platform::StoreLittleEndian16(bytes, value);
  Write(bytes);
  return *this;
}

CArchive& CArchive::operator<<(std::uint32_t value) {
  std::array<std::byte, 4> bytes{};
  platform::StoreLittleEndian32(bytes, value);
  Write(bytes);
  return *this;
}

// A float goes as its four bytes. So what is read back has the bits that were computed.
CArchive& CArchive::operator<<(float value) { return *this << std::bit_cast<std::uint32_t>(value); }

CArchive& CArchive::operator>>(std::uint16_t& value) {
  std::array<std::byte, 2> bytes{};
  Read(bytes);
  value = platform::LoadLittleEndian16(bytes);
  return *this;
}

CArchive& CArchive::operator>>(std::uint32_t& value) {
  std::array<std::byte, 4> bytes{};
  Read(bytes);
  value = platform::LoadLittleEndian32(bytes);
  return *this;
}

CArchive& CArchive::operator>>(float& value) {
  std::uint32_t bits = 0;
  *this >> bits;
  value = std::bit_cast<float>(bits);
  return *this;
}

// A count in a file says how many values follow. A reader asks here first whether the file can
// hold as many, before memory is taken for them.
std::uint64_t CArchive::GetRemaining() {
  if (IsStoring() || !m_status) {
    return 0;
  }
  const auto length = m_file.GetLength();
  if (!length) {
    Fail(ArchiveError::kFileFailure);
    return 0;
  }
  // The file may have become shorter since its last bytes were read.
  const std::uint64_t unread = *length > m_fromFile ? *length - m_fromFile : 0;
  return unread + (m_end - m_begin);
}

ArchiveStatus CArchive::Close() {
  if (IsStoring()) {
    FlushBuffer();
  }
  return m_status;
}

// One buffer serves both directions. A storing archive fills it up to m_end and writes it when it
// is full. A loading one reads the file ahead into it, and m_begin follows what was taken out.

void CArchive::Write(std::span<const std::byte> bytes) {
  if (!IsStoring()) {
    Fail(ArchiveError::kBadFormat);
  }
  while (!bytes.empty() && m_status) {
    const std::size_t count = std::min(bytes.size(), m_buffer.size() - m_end);
    std::copy_n(bytes.begin(), count, m_buffer.begin() + static_cast<std::ptrdiff_t>(m_end));
    m_end += count;
    bytes = bytes.subspan(count);
    if (m_end == m_buffer.size()) {
      FlushBuffer();
    }
  }
}

void CArchive::Read(std::span<std::byte> into) {
  // A read that fails gives zeros, and never what the memory held before.
  std::fill(into.begin(), into.end(), std::byte{});
  if (IsStoring()) {
    Fail(ArchiveError::kBadFormat);
  }
  while (!into.empty() && m_status && (m_begin < m_end || FillBuffer())) {
    const std::size_t count = std::min(into.size(), m_end - m_begin);
    std::copy_n(m_buffer.begin() + static_cast<std::ptrdiff_t>(m_begin), count, into.begin());
    m_begin += count;
    into = into.subspan(count);
  }
}

void CArchive::FlushBuffer() {
  if (m_status && m_end > 0 && !m_file.Write(std::span(m_buffer).first(m_end))) {
    Fail(ArchiveError::kFileFailure);
  }
  m_end = 0;
}

/// Reads the next bytes of the file. Returns false at the end of the file and after a failure.
bool CArchive::FillBuffer() {
  const auto count = m_file.Read(m_buffer);
  if (!count || *count == 0) {
    Fail(count ? ArchiveError::kEndOfFile : ArchiveError::kFileFailure);
    return false;
  }
  m_begin = 0;
  m_end = *count;
  m_fromFile += *count;
  return true;
}

}  // namespace framework
