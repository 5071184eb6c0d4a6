#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "platform/registry.h"
#include "platform/sqlite/statement.h"

namespace sqlite {

/// The tables of a registry, key by key. Knows nothing of threads and of groups. A key is given by
/// its number, which is never used again once the key is deleted.
class Store {
 public:
  /// Prepares the statements for `database`, which outlives this object. kDamaged where it lacks
  /// what they need.
  [[nodiscard]] platform::RegistryError Prepare(sqlite3* database);

  /// Stores the number of the subkey `name` of `parent` in `key`.
  [[nodiscard]] platform::RegistryError FindKey(std::int64_t parent, std::u16string_view name,
                                                std::int64_t& key) const;
  [[nodiscard]] platform::RegistryError InsertKey(std::int64_t parent, std::u16string_view name,
                                                  std::int64_t& key) const;
  [[nodiscard]] platform::RegistryError DeleteKey(std::int64_t key) const;

  [[nodiscard]] platform::RegistryError SubkeyAt(std::int64_t key, std::uint32_t index,
                                                 std::u16string& name) const;
  [[nodiscard]] platform::RegistryError ValueAt(std::int64_t key, std::uint32_t index,
                                                std::u16string& name) const;

  [[nodiscard]] platform::RegistryError QueryValue(std::int64_t key, std::u16string_view name,
                                                   platform::RegistryValue& value) const;
  [[nodiscard]] platform::RegistryError SetValue(std::int64_t key, std::u16string_view name,
                                                 platform::RegistryType type,
                                                 std::span<const std::byte> bytes) const;
  [[nodiscard]] platform::RegistryError DeleteValue(std::int64_t key,
                                                    std::u16string_view name) const;

 private:
  [[nodiscard]] platform::RegistryError NameAt(const Statement& statement, std::int64_t key,
                                               std::uint32_t index, std::u16string& name) const;

  sqlite3* m_database = nullptr;
  Statement m_findKey;
  Statement m_insertKey;
  Statement m_deleteKey;
  Statement m_keyExists;
  Statement m_subkeyAt;
  Statement m_valueAt;
  Statement m_queryValue;
  Statement m_setValue;
  Statement m_deleteValue;
};

}  // namespace sqlite
