#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string_view>
#include <vector>

#include "backends/vcard/contact_source.h"
#include "platform/file_system.h"

namespace vcard {

/// Opens the folder for what may be lost at any time. Returns null if there is none.
using OpenCache = std::function<platform::FileSystem*()>;

/// The contacts of the vCard file that was read last, so that it need not be read card by card
/// again while it stays as it is. A copy of somebody's address book is as private as the book: it
/// is its user's alone, and never on another medium. It can be lost at any time. What is torn, of
/// another version of the program or of another file counts as nothing, and nobody hears of a
/// failure.
///
/// Only a version for which CanKeep returns true is asked for or kept.
class BookCache {
 public:
  /// A smaller file is read in no time, and is not kept.
  static constexpr std::uint64_t kFewestBytes = std::uint64_t{64} * 1024;

  /// Returns whether a file may be kept: it is not a small one, and it can be known again.
  [[nodiscard]] static bool CanKeep(const platform::FileVersion& version) {
    return version.isSettled && version.length >= kFewestBytes;
  }

  /// `\contacts` of `files` holds the copy. They outlive this.
  explicit BookCache(platform::FileSystem& files) : m_files(files) {}

  /// Fills `book`, which has its name and nothing else, and `remarks` with what the file at `path`
  /// gave when it was read in this version. Returns false, and fills nothing, if that is not known.
  [[nodiscard]] bool Recall(std::u16string_view path, const platform::FileVersion& version,
                            Book& book, RemarkList& remarks);

  /// Keeps what the file at `path` gave. `version` is one that it had before it was read and still
  /// has.
  void Keep(std::u16string_view path, const platform::FileVersion& version, const Book& book,
            const RemarkList& remarks);

  /// Returns the bytes of a copy: `content` after its checksum.
  [[nodiscard]] static std::vector<std::byte> WithSum(std::span<const std::byte> content);

 private:
  platform::FileSystem& m_files;
};

}  // namespace vcard
