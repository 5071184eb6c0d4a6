#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "backends/sqlite/statement.h"
#include "platform/registry.h"

namespace sqlite {

/// The place that an enumeration by rising index has reached. With it the next item is found from
/// the last one and not counted from the first. It is only good to be given back.
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
  /// Prepares the statements for `database`, which outlives this object. Fails with kDamaged if the
  /// database lacks what they need. `number` keeps apart the stores of one registry: a position
  /// that another one gave counts as unknown.
  [[nodiscard]] platform::Result<void, platform::RegistryError> Prepare(sqlite3* database,
                                                                        std::uint32_t number);

  /// Returns the number of the subkey `name` of `parent`.
  [[nodiscard]] platform::Result<std::int64_t, platform::RegistryError> FindKey(
      std::int64_t parent, std::u16string_view name) const;
  /// Returns the number of the new key.
  [[nodiscard]] platform::Result<std::int64_t, platform::RegistryError> InsertKey(
      std::int64_t parent, std::u16string_view name) const;
  [[nodiscard]] platform::Result<void, platform::RegistryError> DeleteKey(std::int64_t key) const;

  // `position` is that of the last call for this key. It only makes the call cheaper. Both return
  // nothing if `index` is past the last item.
  [[nodiscard]] platform::Result<std::optional<std::u16string>, platform::RegistryError> SubkeyAt(
      std::int64_t key, std::uint32_t index, Position& position) const;
  [[nodiscard]] platform::Result<std::optional<std::u16string>, platform::RegistryError> ValueAt(
      std::int64_t key, std::uint32_t index, Position& position) const;

  [[nodiscard]] platform::Result<platform::RegistryValue, platform::RegistryError> QueryValue(
      std::int64_t key, std::u16string_view name) const;
  [[nodiscard]] platform::Result<void, platform::RegistryError> SetValue(
      std::int64_t key, std::u16string_view name, platform::RegistryType type,
      std::span<const std::byte> bytes) const;
  [[nodiscard]] platform::Result<void, platform::RegistryError> DeleteValue(
      std::int64_t key, std::u16string_view name) const;

  /// To be called whenever changes were undone.
  void NoteUndone() const { ++m_losses; }

 private:
  /// How the items of a key are found.
  struct Enumeration {
    Statement at;     ///< By their index.
    Statement after;  ///< By the number before theirs.
  };

  /// Runs a statement that deletes. Fails with kNotFound if there was nothing to delete.
  [[nodiscard]] platform::Result<void, platform::RegistryError> RunDeletion(Run& run) const;

  using Name = platform::Result<std::optional<std::u16string>, platform::RegistryError>;

  [[nodiscard]] Name NameAt(const Enumeration& items, std::int64_t key, std::uint32_t index,
                            Position& position) const;
  /// Returns no name if the item has to be found by its index.
  [[nodiscard]] Name NameFrom(const Enumeration& items, std::int64_t key, std::uint32_t index,
                              Position& position) const;
  /// Returns the version of the state that a statement reads which has not ended. Returns nothing
  /// if it cannot be read: then the place of an item is not remembered.
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
