#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/clock.h"
#include "platform/file_system.h"
#include "platform/registry.h"
#include "storage/trash_item.h"
#include "storage/trash_names.h"

namespace storage {

/// One tag, or file of no tag, in the trash.
struct TrashedTag {
  std::u16string file;      ///< Name in the trash folder.
  std::u16string deletion;  ///< The same for everything that went in one deletion.
  TrashItem item;
};

/// Why a tag could not be restored.
enum class RestoreError : std::uint8_t {
  kExists,    ///< The store holds something of that name.
  kTooMany,   ///< There are as many tags as there may be.
  kFull,      ///< The disk is full.
  kNoFolder,  ///< A folder for recordings or templates is missing and cannot be made.
  kOther,
};

/// What of a tag could not be deleted.
enum class PartError : std::uint8_t { kFileStays, kEntryStays };

/// The trash: what was deleted stays there for 30 days, as far as 100 MB reach.
///
/// The idea is a journal of files (trash_names.h), so that a process may be killed at any moment. A
/// tag goes in this order: the mark of the deletion and the copy are put on the medium, the tag's
/// parts go, the mark goes. So a tag of a deletion that was killed is found by the mark. If the
/// store still holds it whole, the copy is dropped; otherwise the deletion is finished. A tag is
/// restored under a mark as well: it is in the trash until its entry is back in the store.
///
/// A caller that changes anything holds the mutex of the Learning page. Used by one thread.
class TagTrash {
 public:
  static constexpr std::int64_t kKeptSeconds = std::int64_t{30} * 24 * 60 * 60;
  static constexpr std::uint64_t kKeptBytes = 100'000'000;

  TagTrash(platform::FileSystem& files, platform::Registry& registry, platform::Clock& clock)
      : m_files(files), m_registry(registry), m_clock(clock) {}

  /// Returns what is in the trash, the latest deletion first. A tag that the store still holds
  /// whole is not in it. A file that is torn is passed over. Changes nothing. Fails if the trash
  /// cannot be read.
  [[nodiscard]] platform::Result<std::vector<TrashedTag>, platform::FileError> List() const;

  /// Finishes or undoes what was killed on its way, and removes what is too old or too much. The
  /// latest deletion is kept, whatever its size.
  void Recover() const;

  /// Fails if a tag with these parts cannot be restored as the store is now. Changes nothing.
  [[nodiscard]] platform::Result<void, RestoreError> CheckRoomFor(const TagParts& parts) const;

  /// Puts a tag of the list back into the store and takes it out of the trash. If that fails, it
  /// stays in the trash, and the store is as before.
  [[nodiscard]] platform::Result<void, RestoreError> Restore(const TrashedTag& tag) const;

  /// Returns a stamp that no file of the trash has, and makes the folder. Fails if there is none.
  [[nodiscard]] platform::Result<std::u16string, platform::FileError> MakeStamp(
      std::int64_t unixTime) const;

  /// Notes tags that are about to come from elsewhere, and of which nothing is in the store.
  /// Returns the name of the note when it is on the medium. If the process is killed, Recover takes
  /// away what came only in part.
  [[nodiscard]] platform::Result<std::u16string, platform::FileError> BeginRestoring(
      const std::vector<TagParts>& tags) const;

  /// Takes away the tags of a note that are not whole, and then the note.
  void EndRestoring(std::u16string_view mark) const;

  /// Destroys what is in the trash, but for deletions in progress. Goes on after a file that stays,
  /// and fails with the first error then.
  [[nodiscard]] platform::Result<void, platform::FileError> Empty() const;

  /// Deletes the parts from the store, in the order in which a companion is promised to see them
  /// go, up to the first failure.
  [[nodiscard]] platform::Result<void, PartError> DeleteParts(const TagParts& parts) const;

 private:
  friend class Deletion;

  enum class Unfinished : std::uint8_t { kFinish, kKeep };

  [[nodiscard]] platform::Result<std::vector<std::u16string>, platform::FileError> ListFiles()
      const;
  /// Returns whether the mark is gone.
  bool EndDeletion(std::u16string_view mark, const std::vector<std::u16string>& names,
                   Unfinished unfinished) const;
  void RemoveOld(const std::vector<std::u16string>& names) const;
  [[nodiscard]] platform::Result<void, platform::FileError> FlushStore() const;
  [[nodiscard]] platform::Result<void, platform::FileError> Mark(std::u16string_view name) const;
  bool Delete(std::u16string_view name) const;
  /// Ends what a note is about. Returns whether that is done.
  [[nodiscard]] bool EndNote(std::u16string_view mark) const;
  /// Returns the names in a note. A mark of an item of the trash has none.
  [[nodiscard]] platform::Result<std::vector<TagParts>, platform::FileError> ReadNote(
      std::u16string_view mark) const;
  platform::FileSystem& m_files;
  platform::Registry& m_registry;
  platform::Clock& m_clock;
};

/// Returns a name for a tag that is recorded at this tick count: its decimal text, or that of the
/// next one that neither the store nor the trash holds. A name that is in use would make two tags
/// one. Returns the first name if the trash cannot be read.
[[nodiscard]] std::u16string FreeTagName(platform::FileSystem& files, platform::Registry& registry,
                                         const TagTrash& trash, std::uint32_t tickCount);

}  // namespace storage
