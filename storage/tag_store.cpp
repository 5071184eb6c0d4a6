#include "storage/tag_store.h"

#include <optional>
#include <utility>

#include "language/formatting.h"
#include "platform/registry_names.h"
#include "storage/device_paths.h"
#include "storage/registry_keys.h"

namespace storage {

using platform::Failure;
using platform::FileError;
using platform::RegistryError;
using platform::RegistryType;
using platform::RegistryValue;
using platform::Result;

namespace {

std::u16string EntryPath(std::u16string_view tagName) {
  return std::u16string(kTagKey).append(u"\\").append(tagName);
}

/// Stores the text of a value in `text`. A value that is missing or no text leaves it empty.
RegistryError ReadText(platform::RegistryKey& key, std::u16string_view valueName,
                       std::u16string& text) {
  RegistryValue value;
  const RegistryError error = key.Query(valueName, value);
  text = error == RegistryError::kNone ? TextOfValue(value) : std::u16string();
  return error == RegistryError::kNotFound ? RegistryError::kNone : error;
}

template <typename Error>
Error AcceptMissing(Error error) {
  return error == Error::kNotFound ? Error::kNone : error;
}

Result<void, FileError> AcceptMissing(const Result<void, FileError>& result) {
  const bool isMissing = !result && result.error() == FileError::kNotFound;
  return isMissing ? Result<void, FileError>() : result;
}

using FoundOrNot = Result<std::optional<platform::FoundFile>, FileError>;

FoundOrNot NextFile(platform::FileSearch& search) {
  FoundOrNot found = search.Next();
  while (found && *found && (*found)->isFolder) {
    found = search.Next();
  }
  return found;
}

/// Passes over folders. Its first file was looked for before, since there may be none.
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

bool TagNames::Get(std::uint32_t index, std::u16string& name) const {
  std::u16string found;
  if (m_key->EnumerateSubkey(index, found) != RegistryError::kNone) {
    return false;
  }
  if (found.size() > kMaxLength) {
    return false;
  }
  name = std::move(found);
  return true;
}

RegistryError TagStore::WriteEntry(std::u16string_view tagName, std::int32_t oid,
                                   std::u16string_view phoneType) const {
  platform::RegistryGroup group(m_registry);
  if (group.BeginError() != RegistryError::kNone) {
    return group.BeginError();
  }
  const std::u16string path = EntryPath(tagName);
  platform::OpenedKey entry = m_registry.OpenKey(path);
  if (!entry.key) {
    entry = m_registry.CreateKey(path);
  }
  if (!entry.key) {
    return entry.error;
  }
  RegistryError error =
      entry.key->Set(kContactValue, RegistryType::kString, ToTagValue(language::Decimal(oid)));
  if (error != RegistryError::kNone) {
    return error;
  }
  error = entry.key->Set(kPhoneTypeValue, RegistryType::kString, ToTagValue(phoneType));
  if (error != RegistryError::kNone) {
    return error;
  }
  return group.Commit();
}

std::unique_ptr<TagNames> TagStore::OpenNames() const {
  platform::OpenedKey tags = m_registry.OpenKey(kTagKey);
  return tags.key ? std::make_unique<TagNames>(std::move(tags.key)) : nullptr;
}

RegistryError TagStore::ReadEntry(std::u16string_view tagName, TagEntry& entry) const {
  const platform::OpenedKey opened = m_registry.OpenKey(EntryPath(tagName));
  if (!opened.key) {
    return opened.error;
  }
  std::u16string contact;
  std::u16string phoneType;
  RegistryError error = ReadText(*opened.key, kContactValue, contact);
  if (error != RegistryError::kNone) {
    return error;
  }
  error = ReadText(*opened.key, kPhoneTypeValue, phoneType);
  if (error != RegistryError::kNone) {
    return error;
  }
  entry = {ParseOid(contact), std::move(phoneType)};
  return RegistryError::kNone;
}

RegistryError TagStore::ListNames(std::vector<std::u16string>& names,
                                  std::size_t* passedOver) const {
  const platform::OpenedKey tags = m_registry.OpenKey(kTagKey);
  if (!tags.key) {
    return tags.error == RegistryError::kNotFound ? RegistryError::kNone : tags.error;
  }
  std::size_t unusable = 0;
  RegistryError error = RegistryError::kNone;
  for (std::uint32_t index = 0; error == RegistryError::kNone || error == RegistryError::kInvalid;
       ++index) {
    std::u16string name;
    error = tags.key->EnumerateSubkey(index, name);
    if (error == RegistryError::kNone && platform::IsKeyName(name)) {
      names.push_back(std::move(name));
    } else if (error == RegistryError::kNone || error == RegistryError::kInvalid) {
      ++unusable;
    }
  }
  if (passedOver != nullptr) {
    *passedOver = unusable;
  }
  return error == RegistryError::kNoMoreItems ? RegistryError::kNone : error;
}

Result<void, FileError> TagStore::DeleteWaveFile(std::u16string_view tagName) const {
  return AcceptMissing(m_files.Delete(WavePath(tagName)));
}

Result<void, FileError> TagStore::DeleteTemplateFile(std::u16string_view tagName) const {
  return AcceptMissing(m_files.Delete(TemplatePath(tagName)));
}

RegistryError TagStore::DeleteEntry(std::u16string_view tagName) const {
  return AcceptMissing(m_registry.DeleteKey(EntryPath(tagName)));
}

TagDeletion TagStore::Delete(std::u16string_view tagName) const {
  if (!DeleteWaveFile(tagName)) {
    return TagDeletion::kWaveFailed;
  }
  if (!DeleteTemplateFile(tagName)) {
    return TagDeletion::kTemplateFailed;
  }
  if (DeleteEntry(tagName) != RegistryError::kNone) {
    return TagDeletion::kEntryFailed;
  }
  return TagDeletion::kDone;
}

RegistryError TagStore::DeleteAllEntries() const {
  return AcceptMissing(m_registry.DeleteKey(kTagKey));
}

Result<std::unique_ptr<platform::FileSearch>, FileError> TagStore::FindRecordings() const {
  return FindFilesOnly(m_files, kWavePattern);
}

}  // namespace storage
