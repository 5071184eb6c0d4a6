#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"
#include "platform/registry.h"
#include "storage/tag_entry.h"

namespace storage {

/// The names of the tags in the registry, in progress. Used by one thread.
class TagNames {
 public:
  /// A longer subkey name ends the enumeration, as everything else does that hinders it.
  static constexpr std::size_t kMaxLength = 30;

  explicit TagNames(std::unique_ptr<platform::RegistryKey> key) : m_key(std::move(key)) {}

  /// Stores the name at `index` (0-based) in `name`; false where the enumeration ends. While tags
  /// are deleted, the next one moves into the index of the one that went.
  [[nodiscard]] bool Get(std::uint32_t index, std::u16string& name) const;

 private:
  std::unique_ptr<platform::RegistryKey> m_key;
};

struct TagList {
  std::vector<std::u16string> names;
  /// Keys of another program that no path can name. They are no tags.
  std::size_t passedOver = 0;
};

/// How far the deletion of a tag came. The steps before the one that failed were done.
enum class TagDeletion : std::uint8_t {
  kDone,
  kWaveFailed,
  kTemplateFailed,
  kEntryFailed,
};

/// The learned tags as the applet and the companion dialer share them: for each an entry in the
/// registry, a recording and a template. The entries are the list of tags; files alone are none.
/// Reports nothing to the user and keeps nothing in memory.
class TagStore {
 public:
  TagStore(platform::FileSystem& files, platform::Registry& registry)
      : m_files(files), m_registry(registry) {}

  /// Writes the entry of a tag over an earlier one of that name, all of it or nothing. The last
  /// step of making a tag: its recording and its template are there by then, and stay where this
  /// fails.
  [[nodiscard]] platform::Result<void, platform::RegistryError> WriteEntry(
      std::u16string_view tagName, std::int32_t oid, std::u16string_view phoneType) const;

  /// Null where there is no tag key or it cannot be opened: there are no tags then.
  [[nodiscard]] std::unique_ptr<TagNames> OpenNames() const;

  /// Returns the names of all tags, however long they are.
  [[nodiscard]] platform::Result<TagList, platform::RegistryError> ListNames() const;

  /// Returns what the registry says about a tag. An error means that it could not be asked, and
  /// nothing must be concluded. Values that are missing or unusable are no error.
  [[nodiscard]] platform::Result<TagEntry, platform::RegistryError> ReadEntry(
      std::u16string_view tagName) const;

  // What is missing counts as deleted: an earlier deletion may have come so far.
  [[nodiscard]] platform::Result<void, platform::FileError> DeleteWaveFile(
      std::u16string_view tagName) const;
  [[nodiscard]] platform::Result<void, platform::FileError> DeleteTemplateFile(
      std::u16string_view tagName) const;
  [[nodiscard]] platform::Result<void, platform::RegistryError> DeleteEntry(
      std::u16string_view tagName) const;

  /// Deletes the recording, the template and the entry, in that order, up to the first failure.
  [[nodiscard]] TagDeletion Delete(std::u16string_view tagName) const;

  /// Deletes the tag key with all that is below it.
  [[nodiscard]] platform::Result<void, platform::RegistryError> DeleteAllEntries() const;

  /// Searches for the recordings, of tags or not. Finds their file names, and no folders. Fails
  /// with kNotFound if there is none.
  [[nodiscard]] platform::Result<std::unique_ptr<platform::FileSearch>, platform::FileError>
  FindRecordings() const;

 private:
  platform::FileSystem& m_files;
  platform::Registry& m_registry;
};

}  // namespace storage
