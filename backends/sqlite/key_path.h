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

/// Stores the number of the key in `key`.
[[nodiscard]] platform::RegistryError FindPath(const Store& store, const KeyNames& names,
                                               std::int64_t& key);

/// As FindPath, and makes what is missing. To be called within a transaction.
[[nodiscard]] platform::RegistryError CreatePath(const Store& store, const KeyNames& names,
                                                 std::int64_t& key);

}  // namespace sqlite
