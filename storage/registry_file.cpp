#include "storage/registry_file.h"

namespace storage {

using platform::RegistryError;

namespace {

/// The key that the changes are at.
class CurrentKey {
 public:
  explicit CurrentKey(platform::Registry& registry) : m_registry(registry) {}

  /// Opens the key of `path`, made where it is missing.
  RegistryError MoveTo(const std::u16string& path) {
    if (m_key.key && m_path == path) {
      return RegistryError::kNone;
    }
    m_key = m_registry.CreateKey(path);
    m_path = path;
    return m_key.error;
  }

  void Close() { m_key = {}; }

  [[nodiscard]] platform::RegistryKey& Get() const { return *m_key.key; }

 private:
  platform::Registry& m_registry;
  platform::OpenedKey m_key;
  std::u16string m_path;
};

/// What was to be deleted and is not there is as it should be.
RegistryError AcceptMissing(RegistryError error) {
  return error == RegistryError::kNotFound ? RegistryError::kNone : error;
}

RegistryError Apply(platform::Registry& registry, CurrentKey& current,
                    const RegistryChange& change) {
  if (change.kind == RegistryChange::Kind::kDeleteKey) {
    current.Close();
    return AcceptMissing(registry.DeleteKey(change.key));
  }
  const RegistryError error = current.MoveTo(change.key);
  if (error != RegistryError::kNone || change.kind == RegistryChange::Kind::kCreateKey) {
    return error;
  }
  if (change.kind == RegistryChange::Kind::kDeleteValue) {
    return AcceptMissing(current.Get().DeleteValue(change.valueName));
  }
  return current.Get().Set(change.valueName, change.value.type, change.value.bytes);
}

}  // namespace

std::optional<RegistryFileError> ApplyRegistryChanges(platform::Registry& registry,
                                                      std::span<const RegistryChange> changes) {
  platform::RegistryGroup group(registry);
  if (group.BeginError() != RegistryError::kNone) {
    return RegistryFileError{0, ExplainRegistryError(group.BeginError()), group.BeginError()};
  }
  CurrentKey current(registry);
  for (const RegistryChange& change : changes) {
    const RegistryError error = Apply(registry, current, change);
    if (error != RegistryError::kNone) {
      return RegistryFileError{change.line, ExplainRegistryError(error), error};
    }
  }
  const RegistryError error = group.Commit();
  if (error != RegistryError::kNone) {
    return RegistryFileError{0, ExplainRegistryError(error), error};
  }
  return std::nullopt;
}

std::string ExplainRegistryError(RegistryError error) {
  switch (error) {
    case RegistryError::kNone:
      return "the settings store did it";
    case RegistryError::kNotFound:
    case RegistryError::kNoMoreItems:
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
