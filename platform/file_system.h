#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/result.h"

namespace platform {

/// Why something failed that was asked of a file, a folder or the file system.
enum class FileError : std::uint8_t {
  kNotFound,  ///< The name, or a folder on its way, does not exist.
  kAlreadyExists,
  kAccessDenied,
  kSharingViolation,  ///< Another holder has the file open and does not share it so.
  kDiskFull,
  kReadOnly,  ///< The medium takes no writes.
  kClosed,    ///< The file was closed before.
  kLink,      ///< The name is a symbolic link, and what is written never follows one.
  kOther,
};

enum class FileAccess : std::uint8_t {
  kNone,  ///< Only to see that the file is there or can be made.
  kRead,
  kWrite,
  kReadWrite,
};

/// What other holders may do while the file is open. Holders in this process and in others count
/// alike. Two holders go together only if both share kRead and neither may write; the second one is
/// refused with kSharingViolation.
enum class FileShare : std::uint8_t { kNone, kRead };

enum class FileCreation : std::uint8_t {
  kOpenExisting,
  kOpenAlways,    ///< Made if missing, else opened as it is.
  kCreateAlways,  ///< Made if missing, else emptied.
  kCreateNew,     ///< Made by this call. A link to nothing is there as well: kAlreadyExists.
};

struct OpenMode {
  FileAccess access = FileAccess::kRead;
  FileShare share = FileShare::kNone;
  FileCreation creation = FileCreation::kOpenExisting;
};

/// Which file it is, and in which state. If two are equal and settled, the file has not changed in
/// between. Numbers mean something to their system alone.
struct FileVersion {
  std::uint64_t medium = 0;
  std::uint64_t file = 0;    ///< On its medium.
  std::uint64_t length = 0;  ///< In bytes.
  std::int64_t written = 0;  ///< When its content was changed last, as its user may have set it.
  std::int64_t changed = 0;  ///< When anything of it was changed last.
  /// Whether every later change gives another version. It is not certain for moments after a
  /// change, since clocks of file systems go in steps.
  bool isSettled = false;

  friend bool operator==(const FileVersion&, const FileVersion&) = default;
};

/// One open file with a position. Used by one thread at a time. The destructor closes it and
/// reports nothing.
class File {
 public:
  File() = default;
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  virtual ~File() = default;

  /// Returns the length in bytes.
  [[nodiscard]] virtual Result<std::uint64_t, FileError> GetLength() = 0;

  /// Returns nothing if the system does not know it, or not for certain.
  [[nodiscard]] virtual std::optional<FileVersion> GetVersion() { return std::nullopt; }

  /// Moves the position to `offset` bytes from the start, which may be after the end.
  [[nodiscard]] virtual Result<void, FileError> Seek(std::uint64_t offset) = 0;

  /// Reads at the position and advances it. Returns the number of bytes read, which is below
  /// `into.size()` only at the end of the file.
  [[nodiscard]] virtual Result<std::size_t, FileError> Read(std::span<std::byte> into) = 0;

  /// Writes all of `bytes` at the position and advances it; a gap after the end reads as zeros.
  /// After a failure an unknown first part of `bytes` has been written.
  [[nodiscard]] virtual Result<void, FileError> Write(std::span<const std::byte> bytes) = 0;

  /// Cuts the file, or lets it grow by zeros. The position stays, even after the new end.
  [[nodiscard]] virtual Result<void, FileError> SetLength(std::uint64_t length) = 0;

  /// Returns when everything written is on the medium. If the file has a name, the name is on the
  /// medium as well, no matter who made the file: both survive a loss of power.
  [[nodiscard]] virtual Result<void, FileError> Flush() = 0;

  /// Gives up the file. A failure means that earlier writes may be lost; calling again is allowed
  /// and, once the file is given up, succeeds.
  [[nodiscard]] virtual Result<void, FileError> Close() = 0;
};

/// What a loss of power may undo once Replacement::Publish has returned.
enum class Durability : std::uint8_t {
  kNow,    ///< Nothing: content and name are on the medium.
  kLater,  ///< Anything, also the earlier file, until content and folder are flushed.
};

/// A process that is killed while it replaces a file can leave a name that begins so.
inline constexpr std::u16string_view kUnfinishedPrefix = u".voxtrel-";

/// A new file that has not got its name yet. Nobody else can open it. If this object is destroyed
/// before the file is published, the file is gone, whether or not anything else was at its name. A
/// process that is killed leaves at most a name that begins with kUnfinishedPrefix, next to the
/// path.
class Replacement {
 public:
  Replacement() = default;
  Replacement(const Replacement&) = delete;
  Replacement& operator=(const Replacement&) = delete;
  virtual ~Replacement() = default;

  /// Returns the file. It is empty at first, and open for reading and writing until it is
  /// published.
  [[nodiscard]] virtual File& GetFile() = 0;

  /// Gives the file its name in one step and closes it: at any moment the path is wholly the
  /// earlier file or wholly the new one. With Durability::kNow, or if GetFile() was flushed before,
  /// this holds through a loss of power as well. The name of an earlier file stays as it was
  /// spelled. Its permissions stay too, except those of other users on a device path, which go.
  ///
  /// Fails with kSharingViolation while any holder has the earlier file open, with kAccessDenied if
  /// it is protected, and with kLink if the name has become a link. After a failure the file can be
  /// published again. kOther may also mean that it has its name, but perhaps not on the medium.
  [[nodiscard]] virtual Result<void, FileError> Publish(Durability durability) = 0;
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

  /// Returns the next name, first the first one. Returns nothing if there are no more. After a
  /// failure the search may be continued; it ends in a finite number of calls.
  [[nodiscard]] virtual Result<std::optional<FoundFile>, FileError> Next() = 0;
};

/// Files and folders by path.
///
/// A path that begins with a backslash is a device path ("\Program Files\..."): it is looked up
/// below the root folder of the back end, its parts compared without regard to case and kept as
/// they were first written. A device path that could leave the root (a part "..", ".", empty, or
/// with a "/" or a zero character) names nothing. Any other path is one of the host's own and taken
/// as it stands; the command line uses those. May be called from any thread.
///
/// A file that its user protected against writing is not opened for writing, emptied, deleted or
/// replaced. Each of these fails with kAccessDenied, whatever rights the process has. So does a
/// call that asks for a file and meets a folder, or anything else that is no regular file.
///
/// A symbolic link at the end of a path is followed to read, and never to write: a file opened for
/// writing, made or replaced there is refused with kLink. So nobody who may plant a link in a
/// shared folder has a file written elsewhere. Links among the folders on the way are followed.
///
/// What is made belongs to its user alone: files are 0600 and folders 0700, whatever the umask. An
/// older file on a device path loses the rights of others if it is opened for writing.
///
/// Nothing throws: without memory a call fails with kOther.
class FileSystem {
 public:
  FileSystem() = default;
  FileSystem(const FileSystem&) = delete;
  FileSystem& operator=(const FileSystem&) = delete;
  virtual ~FileSystem() = default;

  [[nodiscard]] virtual Result<std::unique_ptr<File>, FileError> Open(std::u16string_view path,
                                                                      const OpenMode& mode) = 0;

  /// Begins a file that is to take the place of `path`, or to be made there. Other holders of
  /// `path` matter only when it is published. Fails with kAccessDenied, kLink and kNotFound as Open
  /// does.
  [[nodiscard]] virtual Result<std::unique_ptr<Replacement>, FileError> OpenReplacement(
      std::u16string_view path) = 0;

  /// Deletes a file. Fails with kSharingViolation while any holder has it open. If a device path
  /// ends in a link, deletes the link and leaves its file. On a path of the host, a link fails with
  /// kLink.
  [[nodiscard]] virtual Result<void, FileError> Delete(std::u16string_view path) = 0;

  /// Makes one folder, and returns when its name is on the medium.
  [[nodiscard]] virtual Result<void, FileError> CreateFolder(std::u16string_view path) = 0;

  /// Returns when the names that were made, replaced or deleted in the folder `path` are on the
  /// medium. "\" is the root folder.
  [[nodiscard]] virtual Result<void, FileError> FlushFolder(std::u16string_view path) = 0;

  /// Starts a search for the names in the folder of `pattern` that match its last part. "*" stands
  /// for any run of characters, "?" for one; letter case does not count. A pattern without either
  /// asks whether that file or folder exists. "." and ".." are never found. Fails with kNotFound if
  /// nothing matches or the folder is missing; a folder that is there and cannot be read is another
  /// error. The names are those that were there when the search began, each once, even if files are
  /// made or deleted before the next one is asked for.
  [[nodiscard]] virtual Result<std::unique_ptr<FileSearch>, FileError> Find(
      std::u16string_view pattern) = 0;
};

// Numbers in files and in values of the registry have their lowest byte first, on every machine.

inline void StoreLittleEndian16(std::span<std::byte, 2> to, std::uint16_t value) {
  to[0] = static_cast<std::byte>(value & 0xFFU);
  to[1] = static_cast<std::byte>(value >> 8U);
}

inline void StoreLittleEndian32(std::span<std::byte, 4> to, std::uint32_t value) {
  StoreLittleEndian16(to.first<2>(), static_cast<std::uint16_t>(value & 0xFFFFU));
  StoreLittleEndian16(to.last<2>(), static_cast<std::uint16_t>(value >> 16U));
}

[[nodiscard]] inline std::uint16_t LoadLittleEndian16(std::span<const std::byte, 2> from) {
  return static_cast<std::uint16_t>(std::to_integer<unsigned>(from[0]) |
                                    std::to_integer<unsigned>(from[1]) << 8U);
}

[[nodiscard]] inline std::uint32_t LoadLittleEndian32(std::span<const std::byte, 4> from) {
  return LoadLittleEndian16(from.first<2>()) |
         static_cast<std::uint32_t>(LoadLittleEndian16(from.last<2>())) << 16U;
}

}  // namespace platform
