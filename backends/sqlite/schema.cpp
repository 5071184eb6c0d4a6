#include "backends/sqlite/schema.h"

#include <sqlite3.h>

#include "backends/sqlite/statement.h"
#include "backends/sqlite/store.h"

namespace sqlite {

using platform::Failure;
using platform::RegistryError;
using platform::Result;

namespace {

// docs/companion.md describes the tables to other programs.
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

/// By what a database is known. A new, empty one has none of these.
struct Identity {
  std::int64_t objects = 0;
  std::int64_t applicationId = 0;
  std::int64_t version = 0;

  [[nodiscard]] bool IsEmpty() const { return objects == 0 && applicationId == 0 && version == 0; }
};

Result<Identity, RegistryError> ReadIdentity(sqlite3* database) {
  const auto objects = QueryInteger(database, "SELECT count(*) FROM sqlite_schema");
  if (!objects) {
    return Failure(ToRegistryError(objects.error()));
  }
  const auto applicationId = QueryInteger(database, "PRAGMA application_id");
  if (!applicationId) {
    return Failure(ToRegistryError(applicationId.error()));
  }
  const auto version = QueryInteger(database, "PRAGMA user_version");
  if (!version) {
    return Failure(ToRegistryError(version.error()));
  }
  return Identity{*objects, *applicationId, *version};
}

/// Whether every page can be read as what it should be: a change written next to a damaged page
/// could spread the damage.
Result<void, RegistryError> CheckPages(sqlite3* database) {
  Statement statement;
  if (const int result = statement.Prepare(database, "PRAGMA quick_check(1)");
      result != SQLITE_OK) {
    return ToResult(result);
  }
  Run run(statement);
  const int result = run.Step();
  if (result != SQLITE_ROW && result != SQLITE_DONE) {
    return ToResult(result);
  }
  if (result == SQLITE_DONE || run.TextAt(0) != u"ok") {
    return Failure(RegistryError::kDamaged);
  }
  return {};
}

/// The root is there and lies below no key. So no key that can be reached from it is its own
/// parent, however far up: each key has one parent, and a circle of them would hold the root.
Result<void, RegistryError> CheckRoot(sqlite3* database) {
  const auto roots = QueryInteger(
      database, "SELECT count(*) FROM registry_key WHERE id = 1 AND parent_id IS NULL");
  // A table or column that is missing is a plain error to the library.
  if (roots ? *roots != 1 : roots.error() == SQLITE_ERROR) {
    return Failure(RegistryError::kDamaged);
  }
  return ToResult(roots ? SQLITE_OK : roots.error());
}

Result<void, RegistryError> CreateSchema(sqlite3* database,
                                         std::span<const std::u16string> initialKeys) {
  if (const int result = Execute(database, kCreateSchema); result != SQLITE_OK) {
    return ToResult(result);
  }
  Store store;
  if (const auto prepared = store.Prepare(database, 0); !prepared) {
    return prepared;
  }
  for (const std::u16string& path : initialKeys) {
    const auto names = platform::SplitKeyPath(path);
    if (!names) {
      return Failure(RegistryError::kInvalid);
    }
    if (const auto made = CreatePath(store, *names); !made) {
      return Failure(made.error());
    }
  }
  return {};
}

/// Makes the registry unless another process has done so by the time that this one may write.
Result<void, RegistryError> CreateIfEmpty(sqlite3* database,
                                          std::span<const std::u16string> initialKeys) {
  // Names are stored in the form they have here, so that no unit of them is lost in a conversion.
  const int begun = Execute(database, "PRAGMA encoding = 'UTF-16le'; BEGIN IMMEDIATE");
  if (begun != SQLITE_OK) {
    return ToResult(begun);
  }
  const auto result = ReadIdentity(database)
                          .and_then([&](const Identity& identity) {
                            return identity.IsEmpty() ? CreateSchema(database, initialKeys)
                                                      : Result<void, RegistryError>();
                          })
                          .and_then([&] { return ToResult(Execute(database, "COMMIT")); });
  // Still in the transaction, so something failed.
  if (sqlite3_get_autocommit(database) == 0) {
    [[maybe_unused]] const int undone = Execute(database, "ROLLBACK");
  }
  return result;
}

}  // namespace

Result<void, RegistryError> CheckSchema(sqlite3* database, Pages pages) {
  // In one transaction: half of it from before another process made the store, and half from after,
  // would pass for damage.
  if (const int begun = Execute(database, "BEGIN"); begun != SQLITE_OK) {
    return ToResult(begun);
  }
  const auto identity = ReadIdentity(database);
  const int ended = Execute(database, "ROLLBACK");
  if (!identity) {
    return Failure(identity.error());
  }
  if (ended != SQLITE_OK) {
    return ToResult(ended);
  }
  if (identity->IsEmpty()) {
    return Failure(RegistryError::kNotFound);
  }
  if (identity->applicationId != kApplicationId || identity->version < kSchemaVersion) {
    return Failure(RegistryError::kDamaged);
  }
  if (identity->version > kSchemaVersion) {
    return Failure(RegistryError::kNewerStore);
  }
  const auto checked =
      pages == Pages::kKnownSound ? Result<void, RegistryError>() : CheckPages(database);
  return checked ? CheckRoot(database) : checked;
}

Result<void, RegistryError> PrepareSchema(sqlite3* database,
                                          std::span<const std::u16string> initialKeys,
                                          Pages pages) {
  const auto checked = CheckSchema(database, pages);
  if (checked || checked.error() != RegistryError::kNotFound) {
    return checked;
  }
  const auto created = CreateIfEmpty(database, initialKeys);
  return created ? CheckSchema(database, Pages::kUnknown) : created;
}

}  // namespace sqlite
