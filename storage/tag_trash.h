#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/clock.h"
#include "platform/file_system.h"
#include "platform/registry.h"
#include "storage/trash_item.h"

namespace storage {

/// Where deleted tags are kept: below the root, outside the folders that a companion reads.
inline constexpr std::u16string_view kTrashFolder = u"\\Voxtrel Trash";

/// One tag, or file of no tag, in the trash.
struct TrashedTag {
  std::u16string file;      ///< Name in the trash folder.
  std::u16string deletion;  ///< The same for everything that went in one deletion.
  TrashItem item;
};

enum class RestoreResult : std::uint8_t {
  kDone,
  kExists,    ///< The store holds something of that name.
  kTooMany,   ///< There are as many tags as there may be.
  kFull,      ///< The disk is full.
  kNoFolder,  ///< A folder for recordings or templates is missing and cannot be made.
  kFailed,
};

/// The trash: what was deleted stays there for 30 days, as far as 100 MB reach.
///
/// Each deletion has files of its own: "STAMP-NN.deleting" while it is in progress, and
/// "STAMP-NN-NNNN.tar" for each tag. A tag goes in this order: the mark of the deletion and the
/// copy are put on the medium, the tag's parts go, the mark goes. So a tag of a deletion that was
/// killed is found by the mark. If the store still holds it whole, the copy is dropped; otherwise
/// the deletion is finished. While a tag is restored its mark is "STAMP-NN-NNNN.restoring": it is
/// in the trash until its entry is back in the store.
///
/// Whoever changes anything holds the mutex of the Learning page. Used by one thread.
class TagTrash {
 public:
  static constexpr std::int64_t kKeptSeconds = std::int64_t{30} * 24 * 60 * 60;
  static constexpr std::uint64_t kKeptBytes = 100'000'000;

  TagTrash(platform::FileSystem& files, platform::Registry& registry, platform::Clock& clock)
      : m_files(files), m_registry(registry), m_clock(clock) {}

  /// Stores what is in the trash in `tags`, the latest deletion first. A tag that the store still
  /// holds whole is not in it. Changes nothing. Returns false if the trash cannot be read; a single
  /// file that is torn is passed over.
  [[nodiscard]] bool List(std::vector<TrashedTag>& tags) const;

  /// Finishes or undoes what was killed on its way, and removes what is too old or too much. The
  /// latest deletion is kept, whatever its size.
  void Recover() const;

  /// Puts a tag of the list back into the store and takes it out of the trash. If that fails it
  /// stays in the trash, and the store is as before.
  [[nodiscard]] RestoreResult Restore(const TrashedTag& tag) const;

  /// Destroys what is in the trash, but for deletions in progress. Returns false if something is
  /// left.
  [[nodiscard]] bool Empty() const;

  /// Deletes the parts from the store, in the order in which a companion is promised to see them
  /// go, up to the first failure. Returns whether all of them are gone.
  [[nodiscard]] bool DeleteParts(const TagParts& parts) const;

 private:
  friend class Deletion;

  enum class Unfinished : std::uint8_t { kFinish, kKeep };

  [[nodiscard]] bool ListFiles(std::vector<std::u16string>& names) const;
  void EndRestoring(std::u16string_view mark) const;
  void EndDeletion(std::u16string_view mark, const std::vector<std::u16string>& names,
                   Unfinished unfinished) const;
  void RemoveOld(const std::vector<std::u16string>& names) const;
  [[nodiscard]] bool FlushStore() const;
  [[nodiscard]] platform::Result<void, platform::FileError> Mark(std::u16string_view name) const;
  bool Delete(std::u16string_view name) const;

  platform::FileSystem& m_files;
  platform::Registry& m_registry;
  platform::Clock& m_clock;
};

/// One deletion. First each tag that is to go is copied, then the copies are sealed, then the tags
/// may go. The destructor looks at what is left of them. If a tag is still whole, its copy goes. If
/// only a part of a tag is left, the next Recover finishes the work.
class Deletion {
 public:
  Deletion(const TagTrash& trash, DeletionReason by) : m_trash(trash), m_by(by) {}
  Deletion(const Deletion&) = delete;
  Deletion& operator=(const Deletion&) = delete;
  ~Deletion();

  /// Copies a tag. What is left of a tag that an earlier deletion copied whole needs no copy. If
  /// the disk is full and a user deletes, the trash is emptied first; kFull means that it did not
  /// suffice.
  [[nodiscard]] ItemResult Keep(const TagParts& parts, std::u16string_view text);

  /// Returns when all copies are on the medium; false if that cannot be known, and nothing may go.
  [[nodiscard]] bool Seal() const;

 private:
  [[nodiscard]] ItemResult Begin();
  [[nodiscard]] ItemResult Write(const TagParts& parts, std::u16string_view text);
  [[nodiscard]] bool IsKept(const TagParts& parts) const;

  const TagTrash& m_trash;
  const DeletionReason m_by;
  std::u16string m_name;  ///< Empty until something is kept.
  std::int64_t m_time = 0;
  int m_count = 0;
};

/// Returns a name for a tag that is recorded at this tick count: its decimal text, or that of the
/// next one that neither the store nor the trash holds. A name that is in use would make two tags
/// one. Returns the first name if the trash cannot be read.
[[nodiscard]] std::u16string FreeTagName(platform::FileSystem& files, platform::Registry& registry,
                                         const TagTrash& trash, std::uint32_t tickCount);

}  // namespace storage
