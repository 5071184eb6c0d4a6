#include "tags/oids_in_use.h"

#include <string>

#include "storage/registry_keys.h"

namespace tags {

using platform::RegistryError;

std::optional<std::vector<std::int32_t>> FindOidsInUse(platform::Registry& registry,
                                                       const storage::TagStore& store) {
  std::vector<std::int32_t> oids;
  const platform::OpenedKey opened = registry.OpenKey(storage::kTagKey);
  if (opened.error == RegistryError::kNotFound) {
    return oids;
  }
  if (!opened.key) {
    return std::nullopt;
  }
  std::u16string tagName;
  RegistryError error = RegistryError::kNone;
  for (std::uint32_t i = 0;
       (error = opened.key->EnumerateSubkey(i, tagName)) == RegistryError::kNone; ++i) {
    storage::TagEntry entry;
    if (store.ReadEntry(tagName, entry) != RegistryError::kNone) {
      return std::nullopt;
    }
    if (entry.oid) {
      oids.push_back(*entry.oid);
    }
  }
  return error == RegistryError::kNoMoreItems ? std::optional(std::move(oids)) : std::nullopt;
}

}  // namespace tags
