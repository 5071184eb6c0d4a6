#include "storage/tag_store.h"

#include <optional>
#include <utility>

#include "language/texts.h"
#include "storage/device_paths.h"
#include "storage/registry_keys.h"

// A tag is three things with one name: a key of the registry with the contact and the kind of
// number, a recording, and a template. The key makes it a tag: it is written last and deleted last.
// So a companion that reads at any moment finds each tag that is listed with both its files.
namespace storage {

using platform::AcceptMissing;
using platform::Failure;
using platform::FileError;
using platform::RegistryError;
using platform::RegistryType;
using platform::Result;

namespace {

/// Returns the text of a value. It is empty if the value is missing or no text.
Result<std::u16string, RegistryError> ReadText(platform::RegistryKey& key,
                                               std::u16string_view valueName) {
  const auto value = key.Query(valueName);
  if (!value && value.error() != RegistryError::kNotFound) {
    return Failure(value.error());
  }
  return value ? TextOfValue(*value) : std::u16string();
}

using FoundOrNot = Result<std::optional<platform::FoundFile>, FileError>;

FoundOrNot NextFile(platform::FileSearch& search) {
  FoundOrNot found = search.Next();
  while (found && *found && (*found)->isFolder) {
    found = search.Next();
  }
  return found;
}

/// A search that passes over folders. A search must not begin if it finds nothing. So the first
/// file is looked for before this is made, and kept until it is asked for.
class FilesOnly final : public platform::FileSearch {
 public:
  FilesOnly(std::unique_ptr<platform::FileSearch> search, platform::FoundFile first)
      : m_search(std::move(search)), m_first(std::move(first)) {}

  [[nodiscard]] FoundOrNot Next() override {
    return m_first ? std::exchange(m_first, std::nullopt) : NextFile(*m_search);
  }

 private:
  std::unique_ptr<platform::FileSearch> m_search;
  std::optional<platform::FoundFile> m_first;
};

Result<std::unique_ptr<platform::FileSearch>, FileError> FindFilesOnly(
    platform::FileSystem& files, std::u16string_view pattern) {
  auto search = files.Find(pattern);
  if (!search) {
    return search;
  }
  FoundOrNot first = NextFile(**search);
  if (!first) {
    return Failure(first.error());
  }
  if (!*first) {
    return Failure(FileError::kNotFound);
  }
  return std::make_unique<FilesOnly>(std::move(*search), std::move(**first));
}

}  // namespace

std::optional<std::u16string> TagNames::Get(std::uint32_t index) const {
  auto found = m_key->EnumerateSubkey(index);
  return found && *found && (*found)->size() <= kMaxLength ? std::move(*found) : std::nullopt;
}

// Both values are written as one group, so a companion never sees an entry that has one of them.
Result<void, RegistryError> TagStore::WriteEntry(std::u16string_view tagName, std::int32_t oid,
                                                 std::u16string_view phoneType) const {
  auto group = platform::RegistryGroup::Begin(m_registry);
  if (!group) {
    return Failure(group.error());
  }
  const std::u16string path = EntryPath(tagName);
  platform::OpenedKey entry = m_registry.OpenKey(path);
  if (!entry) {
    entry = m_registry.CreateKey(path);
  }
  if (!entry) {
    return Failure(entry.error());
  }
  return (*entry)
      ->Set(kContactValue, RegistryType::kString, ToTagValue(language::Decimal(oid)))
      .and_then([&] {
        return (*entry)->Set(kPhoneTypeValue, RegistryType::kString, ToTagValue(phoneType));
      })
      .and_then([&] { return group->Commit(); });
}

Result<TagNames, RegistryError> TagStore::OpenNames() const {
  return m_registry.OpenKey(kTagKey).map(
      [](std::unique_ptr<platform::RegistryKey>&& key) { return TagNames(std::move(key)); });
}

Result<TagEntry, RegistryError> TagStore::ReadEntry(std::u16string_view tagName) const {
  const platform::OpenedKey opened = m_registry.OpenKey(EntryPath(tagName));
  if (!opened) {
    return Failure(opened.error());
  }
  const auto contact = ReadText(**opened, kContactValue);
  if (!contact) {
    return Failure(contact.error());
  }
  auto phoneType = ReadText(**opened, kPhoneTypeValue);
  if (!phoneType) {
    return Failure(phoneType.error());
  }
  return TagEntry{ParseOid(*contact), std::move(*phoneType)};
}

// An index whose name is invalid belongs to another program. It is counted and passed over, as the
// names after it are tags.
Result<TagList, RegistryError> TagStore::ListNames() const {
  TagList list;
  const platform::OpenedKey tags = m_registry.OpenKey(kTagKey);
  if (!tags && tags.error() == RegistryError::kNotFound) {
    return list;
  }
  if (!tags) {
    return Failure(tags.error());
  }
  for (std::uint32_t index = 0;; ++index) {
    auto name = (*tags)->EnumerateSubkey(index);
    if (!name && name.error() != RegistryError::kInvalid) {
      return Failure(name.error());
    }
    if (name && !*name) {
      return list;
    }
    if (name && platform::IsKeyName(**name)) {
      list.names.push_back(std::move(**name));
    } else {
      ++list.passedOver;
    }
  }
}

Result<void, FileError> TagStore::DeleteWaveFile(std::u16string_view tagName) const {
  return AcceptMissing(m_files.Delete(WavePath(tagName)));
}

Result<void, FileError> TagStore::DeleteTemplateFile(std::u16string_view tagName) const {
  return AcceptMissing(m_files.Delete(TemplatePath(tagName)));
}

Result<void, RegistryError> TagStore::DeleteEntry(std::u16string_view tagName) const {
  return AcceptMissing(m_registry.DeleteKey(EntryPath(tagName)));
}

// The entry goes last. If the deletion ends half way, the tag is still listed and can be deleted
// again.
Result<void, TagPart> TagStore::Delete(std::u16string_view tagName) const {
  if (!DeleteWaveFile(tagName)) {
    return Failure(TagPart::kWave);
  }
  if (!DeleteTemplateFile(tagName)) {
    return Failure(TagPart::kTemplate);
  }
  if (!DeleteEntry(tagName)) {
    return Failure(TagPart::kEntry);
  }
  return {};
}

Result<void, RegistryError> TagStore::DeleteAllEntries() const {
  return AcceptMissing(m_registry.DeleteKey(kTagKey));
}

Result<std::unique_ptr<platform::FileSearch>, FileError> TagStore::FindRecordings() const {
  return FindFilesOnly(m_files, kWavePattern);
}

}  // namespace storage
