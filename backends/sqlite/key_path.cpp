#include "backends/sqlite/key_path.h"

namespace sqlite {

using platform::RegistryError;

RegistryError FindPath(const Store& store, const KeyNames& names, std::int64_t& key) {
  std::int64_t current = kRootKey;
  for (const std::u16string_view name : names) {
    const RegistryError error = store.FindKey(current, name, current);
    if (error != RegistryError::kNone) {
      return error;
    }
  }
  key = current;
  return RegistryError::kNone;
}

RegistryError CreatePath(const Store& store, const KeyNames& names, std::int64_t& key) {
  std::int64_t current = kRootKey;
  for (const std::u16string_view name : names) {
    RegistryError error = store.FindKey(current, name, current);
    if (error == RegistryError::kNotFound) {
      error = store.InsertKey(current, name, current);
    }
    if (error != RegistryError::kNone) {
      return error;
    }
  }
  key = current;
  return RegistryError::kNone;
}

}  // namespace sqlite
