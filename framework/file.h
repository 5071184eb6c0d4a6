#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/file_system.h"

namespace framework {

/// A file object in the style of the framework over the platform's files. Nothing throws: each
/// operation says whether it worked, and fails on a file that is not open. Used by one thread.
class CFile {
 public:
  enum OpenFlags : unsigned {
    modeRead = 0,
    modeWrite = 1,
    modeReadWrite = 2,
    modeCreate = 0x1000,  ///< With a writing mode: made where missing, else emptied.
  };

  explicit CFile(platform::FileSystem& files) : m_files(files) {}

  /// Opens a file, closing the one that was open before. A file opened for reading is shared with
  /// other readers, any other is shared with nobody. `flags` is a combination of OpenFlags.
  [[nodiscard]] bool Open(std::u16string_view path, unsigned flags);

  /// Works on `file` from now on. `file` outlives this use, and Close does not close it.
  void Attach(platform::File& file);

  [[nodiscard]] bool IsOpen() const { return m_file != nullptr; }
  [[nodiscard]] const std::u16string& GetFilePath() const { return m_path; }

  [[nodiscard]] std::optional<std::uint64_t> GetLength();
  [[nodiscard]] bool Seek(std::uint64_t offset);

  /// Number of bytes read, below `into.size()` only at the end of the file; nothing on failure.
  [[nodiscard]] std::optional<std::size_t> Read(std::span<std::byte> into);

  [[nodiscard]] bool Write(std::span<const std::byte> bytes);
  [[nodiscard]] bool SetLength(std::uint64_t length);
  [[nodiscard]] bool Flush();

  /// Why the last operation that failed did so. Returns nothing if none has failed.
  [[nodiscard]] std::optional<platform::FileError> GetError() const { return m_error; }

  /// Closes the file, which is not open afterwards whatever the result; false where writes may be
  /// lost. Closing what is not open succeeds.
  bool Close();

 private:
  [[nodiscard]] bool IsDone(const platform::Result<void, platform::FileError>& result);

  platform::FileSystem& m_files;
  std::unique_ptr<platform::File> m_owned;  ///< Null if another one's file is attached.
  platform::File* m_file = nullptr;
  std::u16string m_path;
  std::optional<platform::FileError> m_error;
};

}  // namespace framework
