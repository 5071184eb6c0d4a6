#include "framework/file.h"

#include <utility>

namespace framework {

using platform::FileAccess;
using platform::FileCreation;
using platform::FileError;
using platform::FileShare;

bool CFile::Open(std::u16string_view path, unsigned flags) {
  Close();
  platform::OpenMode mode{FileAccess::kRead, FileShare::kRead, FileCreation::kOpenExisting};
  if ((flags & (modeWrite | modeReadWrite)) != 0) {
    mode.access = (flags & modeReadWrite) != 0 ? FileAccess::kReadWrite : FileAccess::kWrite;
    mode.share = FileShare::kNone;
  }
  if ((flags & modeCreate) != 0) {
    mode.creation = FileCreation::kCreateAlways;
  }
  auto opened = m_files.Open(path, mode);
  if (!opened) {
    m_error = opened.error();
    return false;
  }
  m_owned = std::move(*opened);
  m_file = m_owned.get();
  m_path = path;
  return true;
}

void CFile::Attach(platform::File& file) {
  Close();
  m_file = &file;
}

std::optional<std::uint64_t> CFile::GetLength() {
  const auto length = m_file ? m_file->GetLength() : platform::Failure(FileError::kClosed);
  return length ? std::optional(*length) : std::nullopt;
}

bool CFile::Seek(std::uint64_t offset) { return m_file && IsDone(m_file->Seek(offset)); }

std::optional<std::size_t> CFile::Read(std::span<std::byte> into) {
  const auto read = m_file ? m_file->Read(into) : platform::Failure(FileError::kClosed);
  return read ? std::optional(*read) : std::nullopt;
}

bool CFile::Write(std::span<const std::byte> bytes) {
  return m_file && IsDone(m_file->Write(bytes));
}

bool CFile::SetLength(std::uint64_t length) { return m_file && IsDone(m_file->SetLength(length)); }

bool CFile::Flush() { return m_file && IsDone(m_file->Flush()); }

bool CFile::Close() {
  if (!m_file) {
    return true;
  }
  const bool closed = !m_owned || IsDone(m_owned->Close());
  m_owned.reset();
  m_file = nullptr;
  m_path.clear();
  return closed;
}

bool CFile::IsDone(const platform::Result<void, FileError>& result) {
  if (!result) {
    m_error = result.error();
  }
  return result.has_value();
}

}  // namespace framework
