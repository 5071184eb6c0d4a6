#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

#include "platform/file_system.h"

namespace framework {

/// A file object in the style of the framework, over the platform's files. It can be opened and
/// closed several times. Every operation but Close fails with kClosed if no file is open. Used by
/// one thread.
class CFile {
 public:
  enum OpenFlags : unsigned {
    modeRead = 0,
    modeWrite = 1,
    modeReadWrite = 2,
    modeCreate = 0x1000,  ///< With a writing mode: makes a file that is missing, empties any other.
  };

  using Done = platform::Result<void, platform::FileError>;

  explicit CFile(platform::FileSystem& files) : m_files(files) {}

  /// Opens a file and closes the one that was open before. A file opened for reading is shared with
  /// other readers; any other is shared with nobody. `flags` is a combination of OpenFlags.
  [[nodiscard]] Done Open(std::u16string_view path, unsigned flags);

  /// Makes the object work on `file`, which must outlive this use. Close does not close it.
  void Attach(platform::File& file);

  [[nodiscard]] bool IsOpen() const { return m_file != nullptr; }
  [[nodiscard]] const std::u16string& GetFilePath() const { return m_path; }

  [[nodiscard]] platform::Result<std::uint64_t, platform::FileError> GetLength();
  [[nodiscard]] Done Seek(std::uint64_t offset);

  /// Returns the number of bytes read, which is below `into.size()` only at the end of the file.
  [[nodiscard]] platform::Result<std::size_t, platform::FileError> Read(std::span<std::byte> into);

  [[nodiscard]] Done Write(std::span<const std::byte> bytes);
  [[nodiscard]] Done SetLength(std::uint64_t length);
  [[nodiscard]] Done Flush();

  /// Returns the error of the last operation that failed, from the last Open on. That Open counts
  /// too. Returns nothing if none has failed. For callers that leave the reading and writing to
  /// others.
  [[nodiscard]] std::optional<platform::FileError> GetError() const { return m_error; }

  /// Closes the file. It is closed afterwards in any case; after a failure writes may be lost.
  /// Succeeds if no file is open.
  Done Close();

 private:
  /// Calls `operation` on the open file, and keeps its error.
  template <typename Operation>
  [[nodiscard]] std::invoke_result_t<Operation, platform::File&> Do(Operation operation);

  platform::FileSystem& m_files;
  std::unique_ptr<platform::File> m_owned;  ///< Null if another one's file is attached.
  platform::File* m_file = nullptr;
  std::u16string m_path;
  std::optional<platform::FileError> m_error;
};

}  // namespace framework
