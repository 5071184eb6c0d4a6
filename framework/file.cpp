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
  m_owned = std::move(opened.file);
  m_file = m_owned.get();
  m_path = m_file ? path : std::u16string_view();
  return IsDone(opened.error);
}

void CFile::Attach(platform::File& file) {
  Close();
  m_file = &file;
}

std::optional<std::uint64_t> CFile::GetLength() {
  return m_file ? m_file->GetLength() : std::nullopt;
}

bool CFile::Seek(std::uint64_t offset) { return m_file && IsDone(m_file->Seek(offset)); }

std::optional<std::size_t> CFile::Read(std::span<std::byte> into) {
  return m_file ? m_file->Read(into) : std::nullopt;
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

bool CFile::IsDone(FileError error) {
  if (error != FileError::kNone) {
    m_error = error;
  }
  return error == FileError::kNone;
}

}  // namespace framework
