#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/file_system.h"
#include "platform/registry.h"

namespace storage {

/// Who deleted a tag.
enum class DeletionReason : std::uint8_t {
  kDelete,     ///< The user, this tag.
  kDeleteAll,  ///< The user, all tags.
  kCleanUp,    ///< The Learning page, because the contact has gone.
  kRepair,     ///< The repair of the store: files that belong to no tag.
};

/// Returns the word by which a reason is stored and shown to scripts.
[[nodiscard]] std::string_view ToWord(DeletionReason reason);

/// What a tag consists of in the store. A file that belongs to no tag has no entry.
struct TagParts {
  std::u16string name;          ///< Of the tag, or of the files less their extension.
  std::u16string waveFile;      ///< Name in the wave folder as it is spelled there; empty for none.
  std::u16string templateFile;  ///< Likewise in the template folder.
  bool hasEntry = false;
};

/// How much of some parts the store holds.
enum class PartsState : std::uint8_t { kWhole, kPartly, kGone, kUnknown };

/// Stores what the store holds under the name of a tag in `parts`. Returns false if a search failed
/// or the registry could not be asked.
[[nodiscard]] bool FindParts(platform::FileSystem& files, platform::Registry& registry,
                             std::u16string_view name, TagParts& parts);

/// Returns kUnknown if any part could not be looked for.
[[nodiscard]] PartsState GetState(platform::FileSystem& files, platform::Registry& registry,
                                  const TagParts& parts);

/// One deleted tag, or file, as the trash keeps it: a tar archive with what is known about it
/// ("about.txt"), its entry as a registry file ("entry.reg"), its recording and its template. So a
/// user can unpack it with any tool.
struct TrashItem {
  TagParts parts;
  std::u16string text;         ///< As the list showed the tag; empty for files of no tag.
  std::int64_t deletedAt = 0;  ///< Seconds since the beginning of 1970, UTC.
  DeletionReason by = DeletionReason::kDelete;
};

enum class ItemResult : std::uint8_t {
  kDone,
  kRecordingInUse,  ///< Another program has the recording open for itself.
  kTemplateInUse,   ///< Likewise the template.
  kEntryUnread,     ///< The registry cannot be asked.
  kFull,            ///< The disk is full.
  kFailed,          ///< Anything else.
};

/// Copies the parts of `item` into a file at `path`. When this returns kDone the copy is complete
/// and its bytes are on the medium; its name may not be. Otherwise there is no such file.
[[nodiscard]] ItemResult WriteItem(platform::FileSystem& files, platform::Registry& registry,
                                   std::u16string_view path, const TrashItem& item);

enum class ItemRead : std::uint8_t {
  kDone,
  kNone,        ///< There is no such file, or it is no whole item.
  kUnreadable,  ///< There may be one; it cannot be read now.
};

/// Reads what is known about the item at `path`, without its parts.
[[nodiscard]] ItemRead ReadItem(platform::FileSystem& files, std::u16string_view path,
                                TrashItem& item);

/// Puts the parts of the item at `path` back into the store: the files first, then the entry, each
/// on the medium before the next. What is there already is replaced.
[[nodiscard]] ItemResult UnpackItem(platform::FileSystem& files, platform::Registry& registry,
                                    std::u16string_view path);

}  // namespace storage
