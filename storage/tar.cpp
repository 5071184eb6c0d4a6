#include "storage/tar.h"

#include <algorithm>
#include <array>
#include <optional>

namespace storage {

using platform::Failure;
using platform::FileError;
using platform::Result;

namespace {

// The POSIX format "ustar": each file is a header of one block, its bytes, and zeros up to the next
// whole block. Two blocks of zeros end the archive. All numbers are octal digits. The archives have
// plain files only, with names of at most 99 bytes, so none of the format's extensions is needed,
// and every tool can unpack them.

constexpr std::size_t kBlockBytes = 512;
using Block = std::array<std::byte, kBlockBytes>;

/// The place of a field in a header.
struct Field {
  std::size_t offset;
  std::size_t length;
};

constexpr Field kName{0, 100};
constexpr Field kMode{100, 8};
constexpr Field kOwner{108, 8};
constexpr Field kGroup{116, 8};
constexpr Field kLength{124, 12};
constexpr Field kTime{136, 12};
constexpr Field kChecksum{148, 8};
constexpr std::size_t kTypeOffset = 156;
constexpr Field kMagic{257, 8};

constexpr std::byte kRegularFile{'0'};
/// The name, a zero, and version 00.
constexpr std::string_view kMagicText(
    "ustar\0"
    "00",
    8);
constexpr std::uint64_t kOwnerReadsAndWrites = 0600;
constexpr unsigned kBitsOfOctal = 3;

void PutText(Block& block, Field field, std::string_view text) {
  std::ranges::transform(text, block.begin() + static_cast<std::ptrdiff_t>(field.offset),
                         [](char letter) { return static_cast<std::byte>(letter); });
}

/// Octal digits and a zero at the end.
void PutNumber(Block& block, Field field, std::uint64_t number) {
  block[field.offset + field.length - 1] = std::byte{0};
  for (std::size_t i = field.length - 1; i > 0; --i, number >>= kBitsOfOctal) {
    block[field.offset + i - 1] = static_cast<std::byte>('0' + (number & 7U));
  }
}

/// Returns nothing if the field holds anything but octal digits before its first zero or blank.
std::optional<std::uint64_t> GetNumber(const Block& block, Field field) {
  std::uint64_t number = 0;
  for (std::size_t i = 0; i < field.length; ++i) {
    const auto unit = std::to_integer<unsigned>(block[field.offset + i]);
    if (unit == 0 || unit == ' ') {
      return number;
    }
    if (unit < '0' || unit > '7') {
      return std::nullopt;
    }
    number = number << kBitsOfOctal | (unit - '0');
  }
  return number;
}

/// The sum of all bytes, with those of its own field counted as blanks.
std::uint64_t ChecksumOf(const Block& block) {
  std::uint64_t sum = 0;
  for (std::size_t i = 0; i < block.size(); ++i) {
    const bool isOwn = i >= kChecksum.offset && i < kChecksum.offset + kChecksum.length;
    sum += isOwn ? std::uint64_t{' '} : std::to_integer<std::uint64_t>(block[i]);
  }
  return sum;
}

std::uint64_t Padding(std::uint64_t length) {
  // The outer remainder makes 0 of a whole block.
  return (kBlockBytes - length % kBlockBytes) % kBlockBytes;
}

}  // namespace

Result<void, FileError> TarWriter::Add(std::string_view name, std::span<const std::byte> bytes) {
  return WriteHeader(name, bytes.size())
      .and_then([&] { return m_file.Write(bytes); })
      .and_then([&] { return Pad(bytes.size()); });
}

Result<void, FileError> TarWriter::AddFile(std::string_view name, platform::File& source) {
  constexpr std::size_t kChunkBytes = 32768;
  const auto length = source.GetLength();
  if (!length || !source.Seek(0)) {
    return Failure(FileError::kOther);
  }
  auto written = WriteHeader(name, *length);
  std::vector<std::byte> chunk(kChunkBytes);
  for (std::uint64_t left = *length; left > 0 && written;) {
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(left, chunk.size()));
    const auto count = source.Read(std::span(chunk).first(wanted));
    if (count != wanted) {
      return Failure(FileError::kOther);
    }
    written = m_file.Write(std::span(chunk).first(wanted));
    left -= wanted;
  }
  return written ? Pad(*length) : written;
}

Result<void, FileError> TarWriter::End() {
  const std::array<std::byte, 2 * kBlockBytes> zeros{};
  return m_file.Write(zeros);
}

Result<void, FileError> TarWriter::WriteHeader(std::string_view name, std::uint64_t length) {
  constexpr std::uint64_t kMostBytes = (std::uint64_t{1} << 33U) - 1;  // Eleven octal digits.
  if (name.empty() || name.size() >= kName.length || length > kMostBytes) {
    return Failure(FileError::kOther);
  }
  Block header{};
  PutText(header, kName, name);
  PutNumber(header, kMode, kOwnerReadsAndWrites);
  PutNumber(header, kOwner, 0);
  PutNumber(header, kGroup, 0);
  PutNumber(header, kLength, length);
  // Owner and times are left out, so the same tags give the same bytes.
  PutNumber(header, kTime, 0);
  header[kTypeOffset] = kRegularFile;
  PutText(header, kMagic, kMagicText);
  PutNumber(header, kChecksum, ChecksumOf(header));
  return m_file.Write(header);
}

Result<void, FileError> TarWriter::Pad(std::uint64_t length) {
  const Block zeros{};
  return m_file.Write(std::span(zeros).first(static_cast<std::size_t>(Padding(length))));
}

Result<void, TarError> TarReader::ReadAt(std::uint64_t offset, std::span<std::byte> bytes) {
  const auto count = m_file.Seek(offset).and_then([&] { return m_file.Read(bytes); });
  if (count == bytes.size()) {
    return {};
  }
  return Failure(count ? TarError::kTorn : TarError::kUnread);
}

// Everything that the header claims is checked against the file before it is used. An archive may
// come from anywhere, and a length that leads out of the file would read what is not there.
Result<bool, TarError> TarReader::Next() {
  Block header{};
  if (const auto read = ReadAt(m_next, header); !read) {
    return Failure(read.error());
  }
  // The first block of zeros is the end. The second one is not looked for.
  if (std::ranges::all_of(header, [](std::byte each) { return each == std::byte{0}; })) {
    return false;
  }
  const auto checksum = GetNumber(header, kChecksum);
  const auto length = GetNumber(header, kLength);
  const auto whole = m_file.GetLength();
  if (!whole) {
    return Failure(TarError::kUnread);
  }
  if (checksum != ChecksumOf(header) || header[kTypeOffset] != kRegularFile || !length) {
    return Failure(TarError::kTorn);
  }
  m_offset = m_next + kBlockBytes;
  if (m_offset > *whole || *length > *whole - m_offset) {
    return Failure(TarError::kTorn);
  }
  m_length = *length;
  // This cannot overflow: the length lies within the file.
  m_next = m_offset + m_length + Padding(m_length);
  m_name.clear();
  for (std::size_t i = 0; i < kName.length && header[i] != std::byte{0}; ++i) {
    m_name += static_cast<char>(header[i]);
  }
  return true;
}

Result<std::vector<std::byte>, TarError> TarReader::ReadAll(std::uint64_t limit) {
  if (m_length > limit) {
    return Failure(TarError::kTorn);
  }
  std::vector<std::byte> bytes(static_cast<std::size_t>(m_length));
  return ReadAt(m_offset, bytes).map([&] { return std::move(bytes); });
}

Result<void, FileError> TarReader::CopyTo(platform::File& to) {
  constexpr std::size_t kChunkBytes = 32768;
  if (!m_file.Seek(m_offset)) {
    return Failure(FileError::kOther);
  }
  std::vector<std::byte> chunk(kChunkBytes);
  for (std::uint64_t left = m_length; left > 0;) {
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(left, chunk.size()));
    if (m_file.Read(std::span(chunk).first(wanted)) != wanted) {
      return Failure(FileError::kOther);
    }
    if (const auto written = to.Write(std::span(chunk).first(wanted)); !written) {
      return written;
    }
    left -= wanted;
  }
  return {};
}

}  // namespace storage
