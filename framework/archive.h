#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "framework/file.h"

namespace framework {

enum class ArchiveStatus : std::uint8_t {
  kGood,
  kEndOfFile,    ///< The file holds less than was to be read.
  kFileFailure,  ///< The file refused a read or a write.
  kBadFormat,    ///< What was read contradicts itself, or what was to be written does.
};

/// A buffered byte stream to or from a file, in the style of the framework but without object
/// headers: exactly the bytes that are written. All numbers are little-endian.
///
/// The first failure stays in the status; later reads give zeros and later writes do nothing. A
/// storing archive hands its last bytes to the file in Close; without Close they are dropped. The
/// file must outlive the archive and is not closed by it.
class CArchive {
 public:
  enum class Mode : std::uint8_t { kLoad, kStore };

  static constexpr std::size_t kBufferSize = 4096;

  CArchive(CFile& file, Mode mode, std::size_t bufferSize = kBufferSize);
  CArchive(const CArchive&) = delete;
  CArchive& operator=(const CArchive&) = delete;
  ~CArchive() = default;

  [[nodiscard]] bool IsStoring() const { return m_mode == Mode::kStore; }
  [[nodiscard]] ArchiveStatus GetStatus() const { return m_status; }

  /// Marks the archive as failed; the first failure stays.
  void Fail(ArchiveStatus status);

  CArchive& operator<<(std::uint16_t value);
  CArchive& operator<<(std::uint32_t value);
  CArchive& operator<<(float value);
  CArchive& operator>>(std::uint16_t& value);
  CArchive& operator>>(std::uint32_t& value);
  CArchive& operator>>(float& value);

  /// Number of bytes that a loading archive can still read; 0 once it has failed.
  [[nodiscard]] std::uint64_t GetRemaining();

  ArchiveStatus Close();

 private:
  void Write(std::span<const std::byte> bytes);
  void Read(std::span<std::byte> into);
  void FlushBuffer();
  bool FillBuffer();

  CFile& m_file;
  Mode m_mode;
  ArchiveStatus m_status = ArchiveStatus::kGood;
  std::vector<std::byte> m_buffer;
  std::size_t m_begin = 0;       ///< Loading: first byte of the buffer not yet handed out.
  std::size_t m_end = 0;         ///< End of the bytes in the buffer.
  std::uint64_t m_fromFile = 0;  ///< Loading: bytes taken from the file so far.
};

}  // namespace framework
