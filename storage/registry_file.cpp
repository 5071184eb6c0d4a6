#include "storage/registry_file.h"

#include <memory>
#include <utility>

namespace storage {

using platform::Failure;
using platform::RegistryError;
using platform::Result;

namespace {

/// The key that the changes are at.
class CurrentKey {
 public:
  explicit CurrentKey(platform::Registry& registry) : m_registry(registry) {}

  /// Opens the key of `path`, and makes it if it is missing.
  Result<void, RegistryError> MoveTo(const std::u16string& path) {
    if (m_key && m_path == path) {
      return {};
    }
    platform::OpenedKey opened = m_registry.CreateKey(path);
    if (!opened) {
      return Failure(opened.error());
    }
    m_key = std::move(*opened);
    m_path = path;
    return {};
  }

  void Close() { m_key.reset(); }

  [[nodiscard]] platform::RegistryKey& Get() const { return *m_key; }

 private:
  platform::Registry& m_registry;
  std::unique_ptr<platform::RegistryKey> m_key;
  std::u16string m_path;
};

/// What was to be deleted and is not there is as it should be.
Result<void, RegistryError> AcceptMissing(Result<void, RegistryError> deleted) {
  return !deleted && deleted.error() == RegistryError::kNotFound ? Result<void, RegistryError>()
                                                                 : deleted;
}

Result<void, RegistryError> Apply(platform::Registry& registry, CurrentKey& current,
                                  const RegistryChange& change) {
  if (change.kind == RegistryChange::Kind::kDeleteKey) {
    current.Close();
    return AcceptMissing(registry.DeleteKey(change.key));
  }
  const auto moved = current.MoveTo(change.key);
  if (!moved || change.kind == RegistryChange::Kind::kCreateKey) {
    return moved;
  }
  if (change.kind == RegistryChange::Kind::kDeleteValue) {
    return AcceptMissing(current.Get().DeleteValue(change.valueName));
  }
  return current.Get().Set(change.valueName, change.value.type, change.value.bytes);
}

RegistryFileError StoreError(RegistryError error, std::size_t line) {
  return {line, ExplainRegistryError(error), error};
}

}  // namespace

std::optional<RegistryFileError> ApplyRegistryChanges(platform::Registry& registry,
                                                      std::span<const RegistryChange> changes) {
  auto group = platform::RegistryGroup::Begin(registry);
  if (!group) {
    return StoreError(group.error(), 0);
  }
  CurrentKey current(registry);
  for (const RegistryChange& change : changes) {
    if (const auto applied = Apply(registry, current, change); !applied) {
      return StoreError(applied.error(), change.line);
    }
  }
  if (const auto committed = group->Commit(); !committed) {
    return StoreError(committed.error(), 0);
  }
  return std::nullopt;
}

std::string ExplainRegistryError(RegistryError error) {
  switch (error) {
    case RegistryError::kNotFound:
      return "the settings store holds no such key or value";
    case RegistryError::kInvalid:
      return "the settings store takes no such name or length";
    case RegistryError::kBusy:
      return "another program is using the settings store";
    case RegistryError::kReadOnly:
      return "the settings store cannot be written to";
    case RegistryError::kFull:
      return "the disk is full";
    case RegistryError::kDamaged:
      return "the settings store is damaged; it was left as it is";
    case RegistryError::kLink:
      return "it, or a file next to it, is a symbolic link, through which nothing is read or "
             "written";
    case RegistryError::kNewerStore:
      return "the settings store was made by a later version of this program; it was left as it is";
    case RegistryError::kOther:
      break;
  }
  return "the settings store cannot be reached";
}

}  // namespace storage
