#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "storage/tag_store.h"

namespace tags {

/// The identifiers of the contacts that tags were recorded for, which a change of the address book
/// must not lose. Nothing if that is not known. A tag that names no contact has none, and a key
/// that no path can name is no tag.
[[nodiscard]] std::optional<std::vector<std::int32_t>> FindOidsInUse(
    const storage::TagStore& store);

}  // namespace tags
