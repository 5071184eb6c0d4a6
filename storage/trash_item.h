#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"
#include "platform/registry.h"
#include "platform/result.h"
#include "storage/store_contents.h"
#include "storage/tag_record.h"

namespace storage {

/// Who deleted a tag.
enum class DeletionReason : std::uint8_t {
  kDelete,     ///< The user, this tag.
  kDeleteAll,  ///< The user, all tags.
  kCleanUp,    ///< The Learning page, because the contact has gone.
  kRepair,     ///< The repair of the store: files that belong to no tag.
  kReplace,    ///< The user, who let a backup replace this tag.
};

/// Returns the word by which a reason is stored and shown to scripts.
[[nodiscard]] std::string_view ToWord(DeletionReason reason);

/// One deleted tag, or file, as the trash keeps it: a tar archive with what is known about it
/// ("about.txt"), its entry as a registry file ("entry.reg"), its recording and its template. So a
/// user can unpack it with any tool.
struct TrashItem {
  TagParts parts;
  std::u16string text;         ///< As the list showed the tag. Empty for files of no tag.
  std::int64_t deletedAt = 0;  ///< Seconds since the beginning of 1970, UTC.
  DeletionReason by = DeletionReason::kDelete;
};

/// Why a tag could not be copied into the trash or out of it.
enum class ItemError : std::uint8_t {
  kRecordingInUse,  ///< Another program has the recording open for itself.
  kTemplateInUse,   ///< The same for the template.
  kStoreUnread,     ///< A folder of the store or the registry cannot be read.
  kFull,            ///< The disk is full.
  kOther,
};

/// Copies the parts of `item` into a file at `path`. After success the copy is complete and its
/// bytes are on the medium, but perhaps not its name. After a failure there is no such file.
[[nodiscard]] platform::Result<void, ItemError> WriteItem(platform::FileSystem& files,
                                                          platform::Registry& registry,
                                                          std::u16string_view path,
                                                          const TrashItem& item);

/// Reads what is known about the item at `path`, without its parts. Returns nothing if there is no
/// such file, or if it is no whole item. Fails if there may be one that cannot be read now.
[[nodiscard]] platform::Result<std::optional<TrashItem>, platform::FileError> ReadItem(
    platform::FileSystem& files, std::u16string_view path);

/// Reads the entry of the item at `path`, as the registry had it. It is empty if the item has none.
/// Fails if the item is torn or cannot be read now.
[[nodiscard]] platform::Result<TagEntry, ItemError> ReadItemEntry(platform::FileSystem& files,
                                                                  std::u16string_view path,
                                                                  const TagParts& parts);

// The journal of a restoration from elsewhere: which tags come, before the first file does.

[[nodiscard]] std::string WriteJournal(const std::vector<TagParts>& tags);

/// Returns what WriteJournal wrote, up to what is torn. Every name stays in its folder.
[[nodiscard]] std::vector<TagParts> ParseJournal(std::string_view journal);

/// Puts the parts of the item at `path` back into the store: the files first, then the entry, each
/// on the medium before the next. What is there already is replaced.
[[nodiscard]] platform::Result<void, ItemError> UnpackItem(platform::FileSystem& files,
                                                           platform::Registry& registry,
                                                           std::u16string_view path);

}  // namespace storage
