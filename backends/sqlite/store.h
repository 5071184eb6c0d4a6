#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "backends/sqlite/statement.h"
#include "platform/registry.h"

namespace sqlite {

/// Where an enumeration by rising index stands, so that the next item is found from the last one
/// and not counted from the first. Good for nothing else than to be given back.
struct Position {
  bool isKnown = false;
  std::uint32_t index = 0;
  std::int64_t id = 0;       ///< Of the item at `index`. Items are in the order of their numbers.
  std::int64_t version = 0;  ///< Of the database: it changes with what other connections write.
  std::uint64_t losses = 0;  ///< What this connection had deleted or undone by then.
};

/// The tables of a registry, key by key. Knows nothing of threads and of groups. A key is given by
/// its number, which is never used again once the key is deleted.
class Store {
 public:
  /// Prepares the statements for `database`, which outlives this object. kDamaged if it lacks what
  /// they need. `number` keeps apart the stores of one registry: a position that another one gave
  /// counts as unknown.
  [[nodiscard]] platform::RegistryError Prepare(sqlite3* database, std::uint32_t number);

  /// Stores the number of the subkey `name` of `parent` in `key`.
  [[nodiscard]] platform::RegistryError FindKey(std::int64_t parent, std::u16string_view name,
                                                std::int64_t& key) const;
  [[nodiscard]] platform::RegistryError InsertKey(std::int64_t parent, std::u16string_view name,
                                                  std::int64_t& key) const;
  [[nodiscard]] platform::RegistryError DeleteKey(std::int64_t key) const;

  // `position` is that of the last call for this key; it only makes the call cheaper.
  [[nodiscard]] platform::RegistryError SubkeyAt(std::int64_t key, std::uint32_t index,
                                                 Position& position, std::u16string& name) const;
  [[nodiscard]] platform::RegistryError ValueAt(std::int64_t key, std::uint32_t index,
                                                Position& position, std::u16string& name) const;

  [[nodiscard]] platform::RegistryError QueryValue(std::int64_t key, std::u16string_view name,
                                                   platform::RegistryValue& value) const;
  [[nodiscard]] platform::RegistryError SetValue(std::int64_t key, std::u16string_view name,
                                                 platform::RegistryType type,
                                                 std::span<const std::byte> bytes) const;
  [[nodiscard]] platform::RegistryError DeleteValue(std::int64_t key,
                                                    std::u16string_view name) const;

  /// To be told whenever changes were undone.
  void NoteUndone() const { ++m_losses; }

 private:
  /// How the items of a key are found.
  struct Enumeration {
    Statement at;      ///< By their index.
    Statement behind;  ///< By the number before theirs.
  };

  [[nodiscard]] platform::RegistryError NameAt(const Enumeration& items, std::int64_t key,
                                               std::uint32_t index, Position& position,
                                               std::u16string& name) const;
  /// Nothing where the item has to be found by its index.
  [[nodiscard]] std::optional<platform::RegistryError> NameFrom(const Enumeration& items,
                                                                std::int64_t key,
                                                                std::uint32_t index,
                                                                Position& position,
                                                                std::u16string& name) const;
  /// Of the state of the database that a statement reads which has not ended.
  [[nodiscard]] std::optional<std::int64_t> ReadVersion() const;

  sqlite3* m_database = nullptr;
  mutable std::uint64_t m_losses = 0;
  Statement m_findKey;
  Statement m_insertKey;
  Statement m_deleteKey;
  Statement m_keyExists;
  Enumeration m_subkeys;
  Enumeration m_values;
  Statement m_version;
  Statement m_queryValue;
  Statement m_setValue;
  Statement m_deleteValue;
};

}  // namespace sqlite
