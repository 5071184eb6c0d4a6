#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "platform/registry.h"

struct sqlite3;

namespace sqlite {

// How a database says that it is a registry, and of which form. docs/companion.md describes the
// tables to other programs. A change of them needs a new version there as well.
inline constexpr std::int64_t kApplicationId = 0x56505245;
inline constexpr std::int64_t kSchemaVersion = 1;

/// What is known of the pages of a database.
enum class Pages : std::uint8_t {
  kUnknown,
  kKnownSound,  ///< They need not be looked at.
};

/// Checks that the database holds a registry. Fails with kNotFound if it holds nothing at all, and
/// with kDamaged or kNewerStore if it holds anything else. Changes nothing.
[[nodiscard]] platform::Result<void, platform::RegistryError> CheckSchema(sqlite3* database,
                                                                          Pages pages);

/// Makes sure that the database holds a registry. A database that holds nothing at all gets one,
/// with its root key and the keys `initialKeys`, in one step; one that holds anything else is left
/// as it is and refused: kDamaged, kNewerStore.
[[nodiscard]] platform::Result<void, platform::RegistryError> PrepareSchema(
    sqlite3* database, std::span<const std::u16string> initialKeys, Pages pages);

}  // namespace sqlite
