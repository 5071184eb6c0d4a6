#include "backends/sqlite/store.h"

#include <sqlite3.h>

#include <utility>

#include "backends/text/names.h"

namespace sqlite {

using platform::Failure;
using platform::RegistryError;
using platform::Result;

Result<void, RegistryError> Store::Prepare(sqlite3* database, std::uint32_t number) {
  constexpr unsigned kBitsOfNumber = 32;
  m_database = database;
  // No place of an earlier connection is good for this one.
  m_losses = std::uint64_t{number} << kBitsOfNumber;
  const struct {
    Statement& statement;
    const char* sql;
  } kStatements[] = {
      {m_findKey, "SELECT id FROM registry_key WHERE parent_id = ? AND folded_name = ?"},
      {m_insertKey, "INSERT INTO registry_key (parent_id, name, folded_name) VALUES (?, ?, ?)"},
      {m_deleteKey, "DELETE FROM registry_key WHERE id = ?"},
      {m_keyExists, "SELECT 1 FROM registry_key WHERE id = ?"},
      {m_subkeys.at,
       "SELECT name, id FROM registry_key WHERE parent_id = ? ORDER BY id LIMIT 1 OFFSET ?"},
      {m_subkeys.after,
       "SELECT name, id FROM registry_key WHERE parent_id = ? AND id > ? ORDER BY id LIMIT 1"},
      {m_values.at,
       "SELECT name, id FROM registry_value WHERE key_id = ? ORDER BY id LIMIT 1 OFFSET ?"},
      {m_values.after,
       "SELECT name, id FROM registry_value WHERE key_id = ? AND id > ? ORDER BY id LIMIT 1"},
      {m_version, "PRAGMA data_version"},
      {m_queryValue, "SELECT type, data FROM registry_value WHERE key_id = ? AND folded_name = ?"},
      {m_setValue,
       "INSERT INTO registry_value (key_id, name, folded_name, type, data) VALUES (?, ?, ?, ?, ?)"
       " ON CONFLICT (key_id, folded_name)"
       " DO UPDATE SET type = excluded.type, data = excluded.data"},
      {m_deleteValue, "DELETE FROM registry_value WHERE key_id = ? AND folded_name = ?"},
  };
  for (const auto& entry : kStatements) {
    const int result = entry.statement.Prepare(database, entry.sql);
    // A table or column that is missing is a plain error to the library.
    if (result == SQLITE_ERROR) {
      return Failure(RegistryError::kDamaged);
    }
    if (result != SQLITE_OK) {
      return ToResult(result);
    }
  }
  return {};
}

Result<std::int64_t, RegistryError> Store::FindKey(std::int64_t parent,
                                                   std::u16string_view name) const {
  const std::u16string folded = text::FoldName(name);
  Run run(m_findKey);
  const int result = run.Integer(parent).Text(folded).Step();
  if (result == SQLITE_ROW) {
    return run.IntegerAt(0);
  }
  return Failure(result == SQLITE_DONE ? RegistryError::kNotFound : ToRegistryError(result));
}

Result<std::int64_t, RegistryError> Store::InsertKey(std::int64_t parent,
                                                     std::u16string_view name) const {
  const std::u16string folded = text::FoldName(name);
  Run run(m_insertKey);
  const auto inserted = ToResult(run.Integer(parent).Text(name).Text(folded).Step());
  if (!inserted) {
    return Failure(inserted.error());
  }
  return sqlite3_last_insert_rowid(m_database);
}

Result<void, RegistryError> Store::DeleteKey(std::int64_t key) const {
  Run run(m_deleteKey);
  return RunDeletion(run.Integer(key));
}

Result<std::optional<std::u16string>, RegistryError> Store::SubkeyAt(std::int64_t key,
                                                                     std::uint32_t index,
                                                                     Position& position) const {
  return NameAt(m_subkeys, key, index, position);
}

Result<std::optional<std::u16string>, RegistryError> Store::ValueAt(std::int64_t key,
                                                                    std::uint32_t index,
                                                                    Position& position) const {
  return NameAt(m_values, key, index, position);
}

Result<platform::RegistryValue, RegistryError> Store::QueryValue(std::int64_t key,
                                                                 std::u16string_view name) const {
  const std::u16string folded = text::FoldName(name);
  Run run(m_queryValue);
  const int result = run.Integer(key).Text(folded).Step();
  if (result != SQLITE_ROW) {
    return Failure(result == SQLITE_DONE ? RegistryError::kNotFound : ToRegistryError(result));
  }
  std::vector<std::byte> bytes = run.BytesAt(1);
  if (bytes.size() > platform::kMaxValueBytes) {
    return Failure(RegistryError::kInvalid);
  }
  return platform::RegistryValue{static_cast<platform::RegistryType>(run.IntegerAt(0)),
                                 std::move(bytes)};
}

Result<void, RegistryError> Store::SetValue(std::int64_t key, std::u16string_view name,
                                            platform::RegistryType type,
                                            std::span<const std::byte> bytes) const {
  const std::u16string folded = text::FoldName(name);
  Run run(m_setValue);
  run.Integer(key).Text(name).Text(folded);
  return ToResult(run.Integer(static_cast<std::uint32_t>(type)).Bytes(bytes).Step());
}

Result<void, RegistryError> Store::DeleteValue(std::int64_t key, std::u16string_view name) const {
  const std::u16string folded = text::FoldName(name);
  Run run(m_deleteValue);
  return RunDeletion(run.Integer(key).Text(folded));
}

Result<void, RegistryError> Store::RunDeletion(Run& run) const {
  const auto deleted = ToResult(run.Step());
  if (!deleted) {
    return deleted;
  }
  ++m_losses;
  if (sqlite3_changes(m_database) == 0) {
    return Failure(RegistryError::kNotFound);
  }
  return {};
}

// An enumeration asks for index 0, 1, 2, ... Counting rows up to each index would cost the square
// of their number. So the place of the last item is remembered, and the next one is the first row
// with a higher id. The place is good as long as nothing has moved: no other connection has written
// (the database's data_version), and this one has neither deleted nor undone anything (m_losses).
// In any other case the item is found by its index, as if nobody had asked before.
Store::Name Store::NameAt(const Enumeration& items, std::int64_t key, std::uint32_t index,
                          Position& position) const {
  if (Name found = NameFrom(items, key, index, position); !found || *found) {
    return found;
  }
  Run run(items.at);
  const int result = run.Integer(key).Integer(index).Step();
  if (result == SQLITE_ROW) {
    const auto version = ReadVersion();
    position = {version.has_value(), index, run.IntegerAt(1), version.value_or(0), m_losses};
    return run.TextAt(0);
  }
  if (result != SQLITE_DONE) {
    return Failure(ToRegistryError(result));
  }
  // There is no such item, or the key itself has gone: these are different answers.
  Run exists(m_keyExists);
  const int existence = exists.Integer(key).Step();
  if (existence == SQLITE_ROW) {
    return std::nullopt;
  }
  return Failure(existence == SQLITE_DONE ? RegistryError::kNotFound : ToRegistryError(existence));
}

Store::Name Store::NameFrom(const Enumeration& items, std::int64_t key, std::uint32_t index,
                            Position& position) const {
  const bool isSame = index == position.index;
  // New items come after all others, so that only what goes moves an item to another index.
  if (!position.isKnown || position.losses != m_losses ||
      (!isSame && index != position.index + 1)) {
    return std::nullopt;
  }
  Run run(items.after);
  const int result = run.Integer(key).Integer(isSame ? position.id - 1 : position.id).Step();
  if (result == SQLITE_ROW && ReadVersion() == position.version) {
    position.index = index;
    position.id = run.IntegerAt(1);
    return run.TextAt(0);
  }
  // A failure may have undone the group, and must not be passed over.
  if (result != SQLITE_ROW && result != SQLITE_DONE) {
    return Failure(ToRegistryError(result));
  }
  return std::nullopt;
}

std::optional<std::int64_t> Store::ReadVersion() const {
  Run run(m_version);
  return run.Step() == SQLITE_ROW ? std::optional(run.IntegerAt(0)) : std::nullopt;
}

Result<std::int64_t, RegistryError> FindPath(const Store& store, const KeyNames& names) {
  Result<std::int64_t, RegistryError> key = kRootKey;
  for (std::size_t i = 0; key && i < names.size(); ++i) {
    key = store.FindKey(*key, names[i]);
  }
  return key;
}

Result<std::int64_t, RegistryError> CreatePath(const Store& store, const KeyNames& names) {
  Result<std::int64_t, RegistryError> key = kRootKey;
  for (std::size_t i = 0; key && i < names.size(); ++i) {
    const std::int64_t parent = *key;
    key = store.FindKey(parent, names[i]);
    if (!key && key.error() == RegistryError::kNotFound) {
      key = store.InsertKey(parent, names[i]);
    }
  }
  return key;
}

}  // namespace sqlite
