#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"
#include "platform/registry.h"
#include "storage/store_contents.h"
#include "storage/tag_trash.h"

namespace storage {

// Everything that takes tags away. Nothing is destroyed: each tag is copied into the trash first,
// and goes when all copies are on the medium.

/// One deletion. First each tag that is to go is kept, then the copies are sealed, then the tags
/// may go. The destructor looks at what is left of them. If a tag is still whole, its copy goes. If
/// only a part of a tag is left, the next Recover of the trash finishes the work.
class Deletion {
 public:
  Deletion(const TagTrash& trash, DeletionReason by) : m_trash(trash), m_by(by) {}
  Deletion(const Deletion&) = delete;
  Deletion& operator=(const Deletion&) = delete;
  ~Deletion();

  /// Copies a tag. What is left of a tag that an earlier deletion copied whole needs no copy. If
  /// the disk is full and a user deletes, the trash is emptied first. kFull means that this did not
  /// suffice.
  [[nodiscard]] platform::Result<void, ItemError> Keep(const TagParts& parts,
                                                       std::u16string_view text);

  /// Returns when all copies are on the medium. If it fails, that is not known, and nothing may go.
  [[nodiscard]] platform::Result<void, platform::FileError> Seal() const;

  /// Does what the destructor does, which then does nothing. Returns whether the deletion is over.
  /// If it is not, the next Recover ends it; until then no other tag may get the name of one that
  /// went, since it would be taken for that one.
  [[nodiscard]] bool End();

 private:
  [[nodiscard]] platform::Result<void, ItemError> Begin();
  [[nodiscard]] platform::Result<void, ItemError> Write(const TagParts& parts,
                                                        std::u16string_view text);
  [[nodiscard]] bool IsKept(const TagParts& parts) const;

  const TagTrash& m_trash;
  const DeletionReason m_by;
  std::u16string m_stamp;  ///< Empty until something is kept.
  std::int64_t m_time = 0;
  unsigned m_count = 0;
};

/// What a deletion has to report to the user as it occurs.
enum class DeletionProblem : std::uint8_t {
  kSearchFailed,  ///< A folder could not be searched.
  kFileInUse,     ///< A file, or the list of tags, could not be deleted.
  kNotKept,       ///< The copies for the trash could not be made.
};

struct DeletedAll {
  bool isDone = false;     ///< Whether every entry is gone.
  int destroyedCount = 0;  ///< Tags and files that the full disk had no room to keep.
};

/// Deletes every recording and every template, of tags or not, and then the tag key. A key below it
/// that no path can name stays, and the tag key with it. All else goes to the trash; `getText`
/// returns what the list shows for a tag. Ends before the first file goes if a folder cannot be
/// searched or a copy cannot be made: what cannot be seen must not lose its entry. A file that
/// another program has open is reported and left, and the rest goes.
[[nodiscard]] DeletedAll DeleteAllTags(
    platform::FileSystem& files, platform::Registry& registry, const TagTrash& trash,
    const std::function<std::u16string(std::u16string_view)>& getText,
    const std::function<void(DeletionProblem)>& report);

/// Why a tag whose contact has gone was not deleted.
enum class StaleError : std::uint8_t {
  kRecordingInUse,
  kTemplateInUse,
  kEntryFailed,
  kNotKept,  ///< The trash cannot take it now. Nothing of it went, since nothing is destroyed.
};

/// Moves a tag whose contact does not exist any more into the trash. `deletion` may take more tags.
[[nodiscard]] platform::Result<void, StaleError> DeleteStaleTag(platform::FileSystem& files,
                                                                platform::Registry& registry,
                                                                Deletion& deletion,
                                                                std::u16string_view tagName);

/// Moves the files of no tag into the trash. Returns the names of those that went. A file that the
/// trash cannot take stays.
[[nodiscard]] std::vector<std::u16string> DeleteOrphans(platform::FileSystem& files,
                                                        platform::Registry& registry,
                                                        const TagTrash& trash);

}  // namespace storage
