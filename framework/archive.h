#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "framework/file.h"

namespace framework {

enum class ArchiveError : std::uint8_t {
  kEndOfFile,    ///< The file holds fewer bytes than the object needs.
  kFileFailure,  ///< The file refused a read or a write.
  kBadFormat,    ///< The object contradicts itself, or the archive was used the wrong way round.
};

using ArchiveStatus = platform::Result<void, ArchiveError>;

/// A buffered stream of bytes to or from a file. It is in the style of the framework but has no
/// object headers: the file holds exactly the bytes that are written. All numbers are
/// little-endian.
///
/// The first failure stays in the status. After it, reads return zeros and writes do nothing, so a
/// caller can read or write a whole object and ask once. A storing archive gives its last bytes to
/// the file in Close; without Close they are dropped. The file must outlive the archive, which does
/// not close it.
class CArchive {
 public:
  enum class Mode : std::uint8_t { kLoad, kStore };

  static constexpr std::size_t kBufferSize = 4096;

  CArchive(CFile& file, Mode mode, std::size_t bufferSize = kBufferSize);
  CArchive(const CArchive&) = delete;
  CArchive& operator=(const CArchive&) = delete;
  ~CArchive() = default;

  [[nodiscard]] bool IsStoring() const { return m_mode == Mode::kStore; }
  [[nodiscard]] const ArchiveStatus& GetStatus() const { return m_status; }

  /// Marks the archive as failed. Does nothing if it has failed before.
  void Fail(ArchiveError error);

  CArchive& operator<<(std::uint16_t value);
  CArchive& operator<<(std::uint32_t value);
  CArchive& operator<<(float value);
  CArchive& operator>>(std::uint16_t& value);
  CArchive& operator>>(std::uint32_t& value);
  CArchive& operator>>(float& value);

  /// Returns how many bytes a loading archive can still read. Returns 0 if the archive has failed.
  [[nodiscard]] std::uint64_t GetRemaining();

  /// Writes what is still in the buffer, and returns the status.
  [[nodiscard]] ArchiveStatus Close();

 private:
  void Write(std::span<const std::byte> bytes);
  void Read(std::span<std::byte> into);
  void FlushBuffer();
  bool FillBuffer();

  CFile& m_file;
  Mode m_mode;
  ArchiveStatus m_status;
  std::vector<std::byte> m_buffer;
  std::size_t m_begin = 0;       ///< Loading: the first byte of the buffer that was not read yet.
  std::size_t m_end = 0;         ///< End of the bytes in the buffer.
  std::uint64_t m_fromFile = 0;  ///< Loading: bytes taken from the file so far.
};

}  // namespace framework
