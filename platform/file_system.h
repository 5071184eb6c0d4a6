#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace platform {

enum class FileError : std::uint8_t {
  kNone,
  kNotFound,  ///< The name, or a folder on its way, does not exist.
  kAlreadyExists,
  kAccessDenied,
  kSharingViolation,  ///< Another holder has the file open and does not share it so.
  kDiskFull,
  kReadOnly,     ///< The medium takes no writes.
  kNoMoreFiles,  ///< The normal end of a search.
  kClosed,       ///< The file was closed before.
  kOther,
};

enum class FileAccess : std::uint8_t {
  kNone,  ///< Only to see that the file is there or can be made.
  kRead,
  kWrite,
  kReadWrite,
};

/// What other holders may do while the file is open. Holders in this process and in others count
/// alike. Two holders go together only where both share kRead and neither may write; whoever comes
/// second is refused with kSharingViolation.
enum class FileShare : std::uint8_t { kNone, kRead };

enum class FileCreation : std::uint8_t {
  kOpenExisting,
  kOpenAlways,    ///< Made where missing, else opened as it is.
  kCreateAlways,  ///< Made where missing, else emptied.
};

struct OpenMode {
  FileAccess access = FileAccess::kRead;
  FileShare share = FileShare::kNone;
  FileCreation creation = FileCreation::kOpenExisting;
};

/// One open file with a position. Used by one thread at a time. The destructor closes it and
/// reports nothing.
class File {
 public:
  File() = default;
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  virtual ~File() = default;

  /// Length in bytes; nothing where it cannot be told.
  [[nodiscard]] virtual std::optional<std::uint64_t> GetLength() = 0;

  /// Moves the position to `offset` bytes from the start, which may lie behind the end.
  [[nodiscard]] virtual FileError Seek(std::uint64_t offset) = 0;

  /// Reads at the position and advances it. Returns the number of bytes read, which is below
  /// `into.size()` only at the end of the file; nothing where the read failed.
  [[nodiscard]] virtual std::optional<std::size_t> Read(std::span<std::byte> into) = 0;

  /// Writes all of `bytes` at the position and advances it; a gap behind the end reads as zeros.
  /// After a failure an unknown first part of `bytes` has been written.
  [[nodiscard]] virtual FileError Write(std::span<const std::byte> bytes) = 0;

  /// Cuts the file, or lets it grow by zeros. The position stays, even behind the new end.
  [[nodiscard]] virtual FileError SetLength(std::uint64_t length) = 0;

  /// Returns when everything written is on the medium, so that a loss of power keeps it.
  [[nodiscard]] virtual FileError Flush() = 0;

  /// Gives up the file. A failure means that earlier writes may be lost; calling again is allowed
  /// and, once the file is given up, succeeds.
  [[nodiscard]] virtual FileError Close() = 0;
};

struct OpenedFile {
  std::unique_ptr<File> file;  ///< Null exactly where `error` is not kNone.
  FileError error = FileError::kOther;
};

struct FoundFile {
  std::u16string name;  ///< Without the folder, as it was written when it was made.
  bool isFolder = false;
};

/// A search in progress over the names of one folder.
class FileSearch {
 public:
  FileSearch() = default;
  FileSearch(const FileSearch&) = delete;
  FileSearch& operator=(const FileSearch&) = delete;
  virtual ~FileSearch() = default;

  /// Stores the next name in `found`. kNoMoreFiles is the normal end. After another failure the
  /// search may be continued, and ends in a finite number of calls.
  [[nodiscard]] virtual FileError Next(FoundFile& found) = 0;
};

struct StartedSearch {
  std::unique_ptr<FileSearch> search;  ///< Null exactly where `error` is not kNone.
  FoundFile first;
  FileError error = FileError::kOther;
};

/// Files and folders by path.
///
/// A path that begins with a backslash is a device path ("\Program Files\..."): it is looked up
/// below the root folder of the back end, its parts compared without regard to case and kept as
/// they were first written. A device path that could leave the root (a part "..", ".", empty, or
/// with a "/" or a zero character) names nothing. Any other path is one of the host's own and taken
/// as it stands; the command line uses those. May be called from any thread.
///
/// A file whose user protected it against writing is neither opened for writing nor emptied,
/// deleted or replaced: kAccessDenied, whatever rights the process has. Likewise a folder, or
/// anything else that is no regular file, where a file is asked for.
class FileSystem {
 public:
  FileSystem() = default;
  FileSystem(const FileSystem&) = delete;
  FileSystem& operator=(const FileSystem&) = delete;
  virtual ~FileSystem() = default;

  [[nodiscard]] virtual OpenedFile Open(std::u16string_view path, const OpenMode& mode) = 0;

  /// Deletes a file. Refused with kSharingViolation while any holder has it open.
  [[nodiscard]] virtual FileError Delete(std::u16string_view path) = 0;

  /// Lets `from` take the place of `to` in one step: at any moment, a loss of power included, `to`
  /// is wholly the earlier file or wholly the new one. What `from` holds need not be flushed. The
  /// permissions and the name of an earlier `to` stay. Refused with kSharingViolation while any
  /// holder has either open. Returns when the change is on the medium; kOther may also mean that
  /// the change was made and it could not be told whether it is there.
  [[nodiscard]] virtual FileError Replace(std::u16string_view from, std::u16string_view to) = 0;

  [[nodiscard]] virtual FileError CreateFolder(std::u16string_view path) = 0;

  /// Finds names in the folder of `pattern` whose last part matches; "*" stands for any run of
  /// characters, "?" for one, letter case counts for nothing. A pattern without either asks whether
  /// that file or folder exists. "." and ".." are never found. kNotFound where nothing matches. The
  /// names are those that were there when the search began, each once, also when files are made or
  /// deleted before the next one is asked for.
  [[nodiscard]] virtual StartedSearch FindFirst(std::u16string_view pattern) = 0;
};

}  // namespace platform
