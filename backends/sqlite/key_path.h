#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "backends/sqlite/store.h"
#include "platform/registry.h"

namespace sqlite {

/// The key that every path begins at.
inline constexpr std::int64_t kRootKey = 1;

using KeyNames = std::vector<std::u16string_view>;

/// Returns the number of the key.
[[nodiscard]] platform::Result<std::int64_t, platform::RegistryError> FindPath(
    const Store& store, const KeyNames& names);

/// As FindPath, and makes what is missing. To be called within a transaction.
[[nodiscard]] platform::Result<std::int64_t, platform::RegistryError> CreatePath(
    const Store& store, const KeyNames& names);

}  // namespace sqlite
