#include "backends/win32/win32_file.h"

#include <algorithm>
#include <limits>

namespace win32 {
namespace {

using platform::Failure;
using platform::FileAccess;
using platform::FileError;
using platform::Result;

constexpr auto kMostBytes = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());

/// The system counts the bytes of one call in 32 bits.
DWORD OneCall(std::size_t bytes) {
  constexpr std::size_t kMost = std::size_t{1} << 30U;
  return static_cast<DWORD>(std::min(bytes, kMost));
}

OVERLAPPED At(std::uint64_t position) {
  constexpr unsigned kHalf = 32;
  OVERLAPPED place{};
  place.Offset = static_cast<DWORD>(position);
  place.OffsetHigh = static_cast<DWORD>(position >> kHalf);
  return place;
}

}  // namespace

// The position is kept here and goes with each call. So a gap after the end, or a position after
// the end of a cut file, needs no care.

Result<std::uint64_t, FileError> Win32File::GetLength() {
  if (!m_file.IsOpen()) {
    return Failure(FileError::kClosed);
  }
  LARGE_INTEGER length{};
  if (::GetFileSizeEx(m_file.Get(), &length) == FALSE) {
    return FailureFromSystem();
  }
  return static_cast<std::uint64_t>(length.QuadPart);
}

Result<void, FileError> Win32File::Seek(std::uint64_t offset) {
  if (!m_file.IsOpen()) {
    return Failure(FileError::kClosed);
  }
  m_position = offset;
  return {};
}

Result<std::size_t, FileError> Win32File::Read(std::span<std::byte> into) {
  if (!m_file.IsOpen()) {
    return Failure(FileError::kClosed);
  }
  if (m_access != FileAccess::kRead && m_access != FileAccess::kReadWrite) {
    return Failure(FileError::kAccessDenied);
  }
  std::size_t total = 0;
  while (total < into.size() && m_position < kMostBytes) {
    OVERLAPPED place = At(m_position);
    DWORD count = 0;
    if (::ReadFile(m_file.Get(), into.data() + total, OneCall(into.size() - total), &count,
                   &place) == FALSE) {
      if (::GetLastError() == ERROR_HANDLE_EOF) {
        break;
      }
      return FailureFromSystem();
    }
    if (count == 0) {
      break;
    }
    total += count;
    m_position += count;
  }
  return total;
}

Result<void, FileError> Win32File::CheckWritable() const {
  if (!m_file.IsOpen()) {
    return Failure(FileError::kClosed);
  }
  if (m_access != FileAccess::kWrite && m_access != FileAccess::kReadWrite) {
    return Failure(FileError::kAccessDenied);
  }
  return {};
}

Result<void, FileError> Win32File::Write(std::span<const std::byte> bytes) {
  if (const auto writable = CheckWritable(); !writable) {
    return writable;
  }
  if (!bytes.empty() && (m_position > kMostBytes || bytes.size() > kMostBytes - m_position)) {
    return Failure(FileError::kDiskFull);
  }
  while (!bytes.empty()) {
    OVERLAPPED place = At(m_position);
    DWORD count = 0;
    if (::WriteFile(m_file.Get(), bytes.data(), OneCall(bytes.size()), &count, &place) == FALSE) {
      return FailureFromSystem();
    }
    if (count == 0) {
      return Failure(FileError::kDiskFull);
    }
    bytes = bytes.subspan(count);
    m_position += count;
  }
  return {};
}

Result<void, FileError> Win32File::SetLength(std::uint64_t length) {
  if (const auto writable = CheckWritable(); !writable) {
    return writable;
  }
  if (length > kMostBytes) {
    return Failure(FileError::kDiskFull);
  }
  FILE_END_OF_FILE_INFO end{};
  end.EndOfFile.QuadPart = static_cast<LONGLONG>(length);
  if (::SetFileInformationByHandle(m_file.Get(), FileEndOfFileInfo, &end, sizeof(end)) == FALSE) {
    return FailureFromSystem();
  }
  return {};
}

// The system flushes only what may be written, and with the file the record that holds its name.
// Through a file that is open for less nothing was written.
Result<void, FileError> Win32File::Flush() {
  if (!m_file.IsOpen()) {
    return Failure(FileError::kClosed);
  }
  if (CheckWritable() && ::FlushFileBuffers(m_file.Get()) == FALSE) {
    return FailureFromSystem();
  }
  return {};
}

Result<void, FileError> Win32File::Close() {
  if (m_file.IsOpen() && ::CloseHandle(m_file.Release()) == FALSE) {
    return FailureFromSystem();
  }
  return {};
}

}  // namespace win32
