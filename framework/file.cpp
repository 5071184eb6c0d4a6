#include "framework/file.h"

#include <utility>

namespace framework {

using platform::Failure;
using platform::File;
using platform::FileAccess;
using platform::FileCreation;
using platform::FileError;
using platform::FileShare;
using platform::Result;

// Every operation goes through here, so that none forgets to ask for an open file or to keep the
// error.
template <typename Operation>
std::invoke_result_t<Operation, File&> CFile::Do(Operation operation) {
  if (m_file == nullptr) {
    return Failure(FileError::kClosed);
  }
  auto result = operation(*m_file);
  if (!result) {
    m_error = result.error();
  }
  return result;
}

CFile::Done CFile::Open(std::u16string_view path, unsigned flags) {
  Close();
  // What Close said of the file before is no concern of this one.
  m_error.reset();
  platform::OpenMode mode{FileAccess::kRead, FileShare::kRead, FileCreation::kOpenExisting};
  if ((flags & (modeWrite | modeReadWrite)) != 0) {
    mode.access = (flags & modeReadWrite) != 0 ? FileAccess::kReadWrite : FileAccess::kWrite;
    // Nobody reads a file that is half written.
    mode.share = FileShare::kNone;
  }
  if ((flags & modeCreate) != 0) {
    mode.creation = FileCreation::kCreateAlways;
  }
  auto opened = m_files.Open(path, mode);
  if (!opened) {
    m_error = opened.error();
    return Failure(opened.error());
  }
  m_owned = std::move(*opened);
  m_file = m_owned.get();
  m_path = path;
  return {};
}

void CFile::Attach(File& file) {
  Close();
  m_file = &file;
}

Result<std::uint64_t, FileError> CFile::GetLength() {
  return Do([](File& file) { return file.GetLength(); });
}

CFile::Done CFile::Seek(std::uint64_t offset) {
  return Do([&](File& file) { return file.Seek(offset); });
}

Result<std::size_t, FileError> CFile::Read(std::span<std::byte> into) {
  return Do([&](File& file) { return file.Read(into); });
}

CFile::Done CFile::Write(std::span<const std::byte> bytes) {
  return Do([&](File& file) { return file.Write(bytes); });
}

CFile::Done CFile::SetLength(std::uint64_t length) {
  return Do([&](File& file) { return file.SetLength(length); });
}

CFile::Done CFile::Flush() {
  return Do([](File& file) { return file.Flush(); });
}

CFile::Done CFile::Close() {
  // An attached file belongs to another one, who closes it.
  Done closed;
  if (m_owned) {
    closed = Do([](File& file) { return file.Close(); });
  }
  m_owned.reset();
  m_file = nullptr;
  m_path.clear();
  return closed;
}

}  // namespace framework
