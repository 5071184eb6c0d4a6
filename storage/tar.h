#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"

namespace storage {

// Archives in the format of POSIX.1-1988 ("ustar"): blocks of 512 bytes, for each member a header
// and its bytes, two blocks of zeros at the end. Any tool of a desktop unpacks them. Only regular
// files with names of at most 100 bytes are written and read.

/// Writes an archive into a file, member by member. Used by one thread.
class TarWriter {
 public:
  /// `file` is open for writing, at its beginning, and outlives this.
  explicit TarWriter(platform::File& file) : m_file(file) {}

  /// Adds a member. `name` has at most 100 bytes. After a failure the archive is torn.
  [[nodiscard]] platform::Result<void, platform::FileError> Add(std::string_view name,
                                                                std::span<const std::byte> bytes);

  /// Adds all that `source` holds, from its beginning. Fails with kOther if that cannot be read.
  [[nodiscard]] platform::Result<void, platform::FileError> AddFile(std::string_view name,
                                                                    platform::File& source);

  /// Ends the archive. This is the last call.
  [[nodiscard]] platform::Result<void, platform::FileError> End();

 private:
  [[nodiscard]] platform::Result<void, platform::FileError> WriteHeader(std::string_view name,
                                                                        std::uint64_t length);
  [[nodiscard]] platform::Result<void, platform::FileError> Pad(std::uint64_t length);

  platform::File& m_file;
};

/// Why an archive gives no more.
enum class TarError : std::uint8_t {
  kUnread,  ///< The file cannot be read now, whatever it holds.
  kTorn,    ///< The file is torn, or is no such archive, or a member is too long.
};

/// Reads an archive from a file, member by member. Used by one thread.
class TarReader {
 public:
  explicit TarReader(platform::File& file) : m_file(file) {}

  /// Goes to the next member. Returns false at the end of the archive.
  [[nodiscard]] platform::Result<bool, TarError> Next();

  /// Of the member that Next went to.
  [[nodiscard]] const std::string& GetName() const { return m_name; }
  [[nodiscard]] std::uint64_t GetLength() const { return m_length; }
  /// Returns the place of its first byte in the file.
  [[nodiscard]] std::uint64_t GetOffset() const { return m_offset; }

  /// Returns the member's bytes. Fails with kTorn if it is longer than `limit`.
  [[nodiscard]] platform::Result<std::vector<std::byte>, TarError> ReadAll(std::uint64_t limit);

  /// Appends the member's bytes to `to`. Fails with kOther if they cannot be read.
  [[nodiscard]] platform::Result<void, platform::FileError> CopyTo(platform::File& to);

 private:
  /// Fills `bytes` from there on. Fails with kTorn if the file ends before.
  [[nodiscard]] platform::Result<void, TarError> ReadAt(std::uint64_t offset,
                                                        std::span<std::byte> bytes);

  platform::File& m_file;
  std::string m_name;
  std::uint64_t m_offset = 0;  ///< Of the member's first byte.
  std::uint64_t m_next = 0;    ///< Of the next header.
  std::uint64_t m_length = 0;
};

}  // namespace storage
