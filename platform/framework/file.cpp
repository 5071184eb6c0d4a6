#include "platform/framework/file.h"

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
  m_file = m_files.Open(path, mode).file;
  m_path = m_file ? path : std::u16string_view();
  return m_file != nullptr;
}

std::optional<std::uint64_t> CFile::GetLength() {
  return m_file ? m_file->GetLength() : std::nullopt;
}

bool CFile::Seek(std::uint64_t offset) {
  return m_file && m_file->Seek(offset) == FileError::kNone;
}

std::optional<std::size_t> CFile::Read(std::span<std::byte> into) {
  return m_file ? m_file->Read(into) : std::nullopt;
}

bool CFile::Write(std::span<const std::byte> bytes) {
  return m_file && m_file->Write(bytes) == FileError::kNone;
}

bool CFile::SetLength(std::uint64_t length) {
  return m_file && m_file->SetLength(length) == FileError::kNone;
}

bool CFile::Flush() { return m_file && m_file->Flush() == FileError::kNone; }

bool CFile::Close() {
  if (!m_file) {
    return true;
  }
  const bool closed = m_file->Close() == FileError::kNone;
  m_file.reset();
  m_path.clear();
  return closed;
}

}  // namespace framework
