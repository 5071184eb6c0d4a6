#include "tags/oids_in_use.h"

#include <string>

namespace tags {

using platform::RegistryError;

std::optional<std::vector<std::int32_t>> FindOidsInUse(const storage::TagStore& store) {
  const auto list = store.ListNames();
  if (!list) {
    return std::nullopt;
  }
  std::vector<std::int32_t> oids;
  for (const std::u16string& name : list->names) {
    const auto entry = store.ReadEntry(name);
    // A value that is too long to be read names no contact either.
    if (!entry && entry.error() != RegistryError::kInvalid) {
      return std::nullopt;
    }
    if (entry && entry->oid) {
      oids.push_back(*entry->oid);
    }
  }
  return oids;
}

}  // namespace tags
