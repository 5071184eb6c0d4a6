#include "tags/oids_in_use.h"

#include <string>

namespace tags {

using platform::RegistryError;

std::optional<std::vector<std::int32_t>> FindOidsInUse(const storage::TagStore& store) {
  std::vector<std::u16string> names;
  if (store.ListNames(names) != RegistryError::kNone) {
    return std::nullopt;
  }
  std::vector<std::int32_t> oids;
  for (const std::u16string& name : names) {
    storage::TagEntry entry;
    const RegistryError error = store.ReadEntry(name, entry);
    // A value that is too long to be read names no contact either.
    if (error != RegistryError::kNone && error != RegistryError::kInvalid) {
      return std::nullopt;
    }
    if (entry.oid) {
      oids.push_back(*entry.oid);
    }
  }
  return oids;
}

}  // namespace tags
