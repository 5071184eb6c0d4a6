#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "platform/registry.h"
#include "storage/tag_store.h"

namespace tags {

/// The identifiers of the contacts that tags were recorded for, which a change of the address book
/// must not lose. Nothing where that cannot be told. A tag that names no contact has none.
[[nodiscard]] std::optional<std::vector<std::int32_t>> FindOidsInUse(
    platform::Registry& registry, const storage::TagStore& store);

}  // namespace tags
