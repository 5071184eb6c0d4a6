#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"
#include "platform/registry.h"
#include "storage/tag_trash.h"
#include "storage/trash_item.h"

namespace storage {

/// Everything that the store holds, one element for each name.
struct StoreContents {
  std::vector<TagParts> tags;     ///< In the order of the registry.
  std::vector<TagParts> orphans;  ///< Files of no tag, with what a killed process left.
  std::size_t unusableKeys = 0;   ///< Keys among the tags that no path can name.
};

enum class ListResult : std::uint8_t {
  kDone,
  kNoEntries,     ///< The registry could not be read to its end.
  kSearchFailed,  ///< A folder could not be read to its end. This is not the same as an empty one.
};

/// Stores what the store holds in `contents`. Calls `searchFailed` for each search that failed, and
/// goes on with the next one.
[[nodiscard]] ListResult ListStore(platform::FileSystem& files, platform::Registry& registry,
                                   StoreContents& contents,
                                   const std::function<void()>& searchFailed);

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
/// returns what the list shows for a tag. Ends before the first file goes
/// if a folder cannot be searched or a copy cannot be made: what cannot be seen must not lose its
/// entry. A file that another program has open is reported and left, and the rest goes.
[[nodiscard]] DeletedAll DeleteAllTags(
    platform::FileSystem& files, platform::Registry& registry, const TagTrash& trash,
    const std::function<std::u16string(std::u16string_view)>& getText,
    const std::function<void(DeletionProblem)>& report);

/// How far the deletion of a tag came that nobody asked for.
enum class StaleDeletion : std::uint8_t {
  kDone,
  kRecordingInUse,
  kTemplateInUse,
  kEntryFailed,
  kNotKept,  ///< The trash cannot take it now. Nothing of it went, since nothing is destroyed.
};

/// Moves a tag whose contact does not exist any more into the trash. `deletion` may take more tags.
[[nodiscard]] StaleDeletion DeleteStaleTag(platform::FileSystem& files,
                                           platform::Registry& registry, Deletion& deletion,
                                           std::u16string_view tagName);

/// Moves the files of no tag into the trash. Returns the names of those that went. A file that the
/// trash cannot take stays.
[[nodiscard]] std::vector<std::u16string> DeleteOrphans(platform::FileSystem& files,
                                                        platform::Registry& registry,
                                                        const TagTrash& trash);

}  // namespace storage
