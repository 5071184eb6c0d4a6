#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"
#include "platform/registry.h"
#include "storage/tag_record.h"

namespace storage {

/// The names of the tags in the registry, in progress. Used by one thread.
class TagNames {
 public:
  /// A longer subkey name ends the enumeration, as everything else does that hinders it.
  static constexpr std::size_t kMaxLength = 30;

  explicit TagNames(std::unique_ptr<platform::RegistryKey> key) : m_key(std::move(key)) {}

  /// Returns the name at `index` (0-based). Returns nothing if the enumeration ends there. If a tag
  /// is deleted, the next one moves into its index.
  [[nodiscard]] std::optional<std::u16string> Get(std::uint32_t index) const;

 private:
  std::unique_ptr<platform::RegistryKey> m_key;
};

struct TagList {
  std::vector<std::u16string> names;
  /// Keys of another program that no path can name. They are no tags.
  std::size_t passedOver = 0;
};

/// A part of a tag, in the order in which the parts are made and deleted.
enum class TagPart : std::uint8_t { kWave, kTemplate, kEntry };

/// The learned tags as the applet and the companion dialer share them. Each has an entry in the
/// registry, a recording and a template. The entries are the list of tags: files alone are no tag.
/// The store shows nothing to the user and keeps nothing in memory.
class TagStore {
 public:
  TagStore(platform::FileSystem& files, platform::Registry& registry)
      : m_files(files), m_registry(registry) {}

  /// Writes the entry of a tag over an earlier one of that name, all of it or nothing. This is the
  /// last step of making a tag: its recording and its template are there by then, and stay if this
  /// fails.
  [[nodiscard]] platform::Result<void, platform::RegistryError> WriteEntry(
      std::u16string_view tagName, std::int32_t oid, std::u16string_view phoneType) const;

  /// Fails with kNotFound if there is no tag key.
  [[nodiscard]] platform::Result<TagNames, platform::RegistryError> OpenNames() const;

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

  /// Deletes the recording, the template and the entry, in that order. Fails with the part that
  /// could not be deleted. The parts before it are gone then, and those after it are there.
  [[nodiscard]] platform::Result<void, TagPart> Delete(std::u16string_view tagName) const;

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
