#include "backends/sqlite/key_path.h"

namespace sqlite {

using platform::RegistryError;
using platform::Result;

Result<std::int64_t, RegistryError> FindPath(const Store& store, const KeyNames& names) {
  Result<std::int64_t, RegistryError> key = kRootKey;
  for (std::size_t i = 0; key && i < names.size(); ++i) {
    key = store.FindKey(*key, names[i]);
  }
  return key;
}

Result<std::int64_t, RegistryError> CreatePath(const Store& store, const KeyNames& names) {
  Result<std::int64_t, RegistryError> key = kRootKey;
  for (std::size_t i = 0; key && i < names.size(); ++i) {
    const std::int64_t parent = *key;
    key = store.FindKey(parent, names[i]);
    if (!key && key.error() == RegistryError::kNotFound) {
      key = store.InsertKey(parent, names[i]);
    }
  }
  return key;
}

}  // namespace sqlite
