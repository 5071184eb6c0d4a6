#include "backends/sqlite/schema.h"

#include <sqlite3.h>

#include "backends/sqlite/errors.h"
#include "backends/sqlite/key_path.h"
#include "backends/sqlite/statement.h"
#include "backends/sqlite/store.h"
#include "platform/registry_names.h"

namespace sqlite {

using platform::RegistryError;

namespace {

constexpr const char* kCreateSchema = R"(
CREATE TABLE registry_key (
  id INTEGER PRIMARY KEY AUTOINCREMENT,
  parent_id INTEGER REFERENCES registry_key (id) ON DELETE CASCADE,
  name TEXT NOT NULL,
  folded_name TEXT NOT NULL,
  UNIQUE (parent_id, folded_name));
CREATE INDEX registry_key_order ON registry_key (parent_id, id);
CREATE TABLE registry_value (
  id INTEGER PRIMARY KEY AUTOINCREMENT,
  key_id INTEGER NOT NULL REFERENCES registry_key (id) ON DELETE CASCADE,
  name TEXT NOT NULL,
  folded_name TEXT NOT NULL,
  type INTEGER NOT NULL CHECK (type BETWEEN 0 AND 4294967295),
  data BLOB NOT NULL CHECK (typeof (data) = 'blob'),
  UNIQUE (key_id, folded_name));
CREATE INDEX registry_value_order ON registry_value (key_id, id);
CREATE VIEW registry_path (key_id, path, folded_path) AS
  WITH RECURSIVE below (key_id, path, folded_path) AS (
    SELECT id, name, folded_name FROM registry_key WHERE parent_id = 1
    UNION ALL
    SELECT child.id, below.path || '\' || child.name, below.folded_path || '\' || child.folded_name
    FROM below JOIN registry_key AS child ON child.parent_id = below.key_id)
  SELECT key_id, path, folded_path FROM below;
INSERT INTO registry_key VALUES (1, NULL, 'HKEY_LOCAL_MACHINE', 'hkey_local_machine');
PRAGMA application_id = 0x56505245;
PRAGMA user_version = 1;
)";

struct Identity {
  std::int64_t objects = 0;
  std::int64_t applicationId = 0;
  std::int64_t version = 0;

  [[nodiscard]] bool IsEmpty() const { return objects == 0 && applicationId == 0 && version == 0; }
};

int ReadIdentity(sqlite3* database, Identity& identity) {
  int result = QueryInteger(database, "SELECT count(*) FROM sqlite_schema", identity.objects);
  if (result != SQLITE_OK) {
    return result;
  }
  result = QueryInteger(database, "PRAGMA application_id", identity.applicationId);
  if (result != SQLITE_OK) {
    return result;
  }
  return QueryInteger(database, "PRAGMA user_version", identity.version);
}

/// Whether every page can be read as what it should be: a change written beside a damaged page
/// could spread the damage.
RegistryError CheckPages(sqlite3* database) {
  Statement statement;
  if (const int result = statement.Prepare(database, "PRAGMA quick_check(1)");
      result != SQLITE_OK) {
    return ToRegistryError(result);
  }
  Run run(statement);
  const int result = run.Step();
  if (result != SQLITE_ROW) {
    return result == SQLITE_DONE ? RegistryError::kDamaged : ToRegistryError(result);
  }
  return run.TextAt(0) == u"ok" ? RegistryError::kNone : RegistryError::kDamaged;
}

/// The root is there and lies below no key. So no key that can be reached from it is its own
/// parent, however far up: each key has one parent, and a circle of them would hold the root.
RegistryError CheckRoot(sqlite3* database) {
  std::int64_t roots = 0;
  const int result = QueryInteger(
      database, "SELECT count(*) FROM registry_key WHERE id = 1 AND parent_id IS NULL", roots);
  // A table or column that is missing is a plain error to the library.
  if (result == SQLITE_ERROR) {
    return RegistryError::kDamaged;
  }
  return result == SQLITE_OK && roots != 1 ? RegistryError::kDamaged : ToRegistryError(result);
}

RegistryError CreateSchema(sqlite3* database, std::span<const std::u16string> initialKeys) {
  if (const int result = Execute(database, kCreateSchema); result != SQLITE_OK) {
    return ToRegistryError(result);
  }
  Store store;
  if (const RegistryError error = store.Prepare(database, 0); error != RegistryError::kNone) {
    return error;
  }
  for (const std::u16string& path : initialKeys) {
    const auto names = platform::SplitKeyPath(path);
    if (!names) {
      return RegistryError::kInvalid;
    }
    std::int64_t key = kRootKey;
    const RegistryError error = CreatePath(store, *names, key);
    if (error != RegistryError::kNone) {
      return error;
    }
  }
  return RegistryError::kNone;
}

/// Makes the registry unless another process has done so by the time that this one may write.
RegistryError CreateWhereEmpty(sqlite3* database, std::span<const std::u16string> initialKeys) {
  // Names are stored in the form they have here, so that no unit of them is lost in a conversion.
  int result = Execute(database, "PRAGMA encoding = 'UTF-16le'; BEGIN IMMEDIATE");
  if (result != SQLITE_OK) {
    return ToRegistryError(result);
  }
  Identity identity;
  result = ReadIdentity(database, identity);
  RegistryError error = ToRegistryError(result);
  if (error == RegistryError::kNone && identity.IsEmpty()) {
    error = CreateSchema(database, initialKeys);
  }
  if (error == RegistryError::kNone) {
    result = Execute(database, "COMMIT");
    error = ToRegistryError(result);
  }
  if (sqlite3_get_autocommit(database) == 0) {
    [[maybe_unused]] const int undone = Execute(database, "ROLLBACK");
  }
  return error;
}

}  // namespace

RegistryError CheckSchema(sqlite3* database) {
  Identity identity;
  // In one transaction: half of it from before another process made the store, and half from after,
  // would pass for damage.
  int result = Execute(database, "BEGIN");
  if (result == SQLITE_OK) {
    result = ReadIdentity(database, identity);
    const int ended = Execute(database, "ROLLBACK");
    result = result == SQLITE_OK ? ended : result;
  }
  if (result != SQLITE_OK) {
    return ToRegistryError(result);
  }
  if (identity.IsEmpty()) {
    return RegistryError::kNotFound;
  }
  if (identity.applicationId != kApplicationId) {
    return RegistryError::kDamaged;
  }
  if (identity.version > kSchemaVersion) {
    return RegistryError::kNewerStore;
  }
  if (identity.version != kSchemaVersion) {
    return RegistryError::kDamaged;
  }
  const RegistryError error = CheckPages(database);
  return error == RegistryError::kNone ? CheckRoot(database) : error;
}

RegistryError PrepareSchema(sqlite3* database, std::span<const std::u16string> initialKeys) {
  RegistryError error = CheckSchema(database);
  if (error == RegistryError::kNotFound) {
    error = CreateWhereEmpty(database, initialKeys);
    if (error == RegistryError::kNone) {
      error = CheckSchema(database);
    }
  }
  return error;
}

}  // namespace sqlite
