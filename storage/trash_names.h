#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace storage {

// The names of the files in the trash. They are its journal: what is in the middle of being done is
// known by the names alone, and each step makes or deletes one file.
//
// Each deletion has a stamp, "20261121T221005Z-01": the time, and a number, since one second can
// have several. Its files are
//   STAMP.deleting           while the deletion is in progress,
//   STAMP-0001.tar           one for each tag,
//   STAMP-0001.restoring     while that tag is put back into the store.
// The restoration of a backup has
//   STAMP-0000.restoring     while tags come that are not in the trash: their names are in it,
//   STAMP.backup             the settings and the language file that it replaced, which stay.

/// The place of deleted tags: below the root, outside the folders that a companion reads.
inline constexpr std::u16string_view kTrashFolder = u"\\Voxtrel Trash";

inline constexpr std::u16string_view kItemEnd = u".tar";
inline constexpr std::u16string_view kDeletingEnd = u".deleting";
inline constexpr std::u16string_view kRestoringEnd = u".restoring";
inline constexpr std::u16string_view kSavedEnd = u".backup";

/// How many deletions one second can have.
inline constexpr unsigned kMostInOneSecond = 99;

/// Returns the path of a file of that name in the trash.
[[nodiscard]] std::u16string InTrash(std::u16string_view name);

/// Returns the stamp of deletion `number` of that second. `unixTime` is in seconds, UTC. Stamps
/// sort as the times do, and are names on every file system.
[[nodiscard]] std::u16string StampOf(std::int64_t unixTime, unsigned number);

/// Returns the name of item `number` of a deletion.
[[nodiscard]] std::u16string ItemName(std::u16string_view stamp, unsigned number);

/// Returns whether a name is that of an item. The other functions take such a name as `item`.
[[nodiscard]] bool IsItem(std::u16string_view name);

/// Returns the stamp with which the name of an item or of a mark begins.
[[nodiscard]] std::u16string_view DeletionOf(std::u16string_view name);

/// Returns the name of the mark that says that an item is being restored.
[[nodiscard]] std::u16string RestoringMarkOf(std::u16string_view item);

/// Returns whether `names` has a mark that an item belongs to: its deletion or its restoration has
/// not ended.
[[nodiscard]] bool IsMarked(const std::vector<std::u16string>& names, std::u16string_view item);

}  // namespace storage
