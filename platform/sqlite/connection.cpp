#include "platform/sqlite/connection.h"

#include <sqlite3.h>

#include "platform/sqlite/errors.h"
#include "platform/sqlite/schema.h"

namespace sqlite {

using platform::RegistryError;

namespace {

constexpr int kRetryMilliseconds = 5;

// A change is on the medium when it returns; a file made by another hand is not trusted.
constexpr const char* kConnectionSettings =
    "PRAGMA synchronous = FULL;"
    "PRAGMA foreign_keys = ON;"
    "PRAGMA cell_size_check = ON;"
    "PRAGMA trusted_schema = OFF;"
    "PRAGMA temp_store = MEMORY";

void Configure(sqlite3* database, int option, bool on) {
  sqlite3_db_config(database, option, on ? 1 : 0, nullptr);
}

}  // namespace

RegistryError Connection::Open(const Settings& settings, std::unique_ptr<Connection>& connection) {
  // Two processes that make the store at the same time can meet where the library does not wait.
  const auto deadline = std::chrono::steady_clock::now() + settings.busyLimit;
  while (true) {
    auto candidate = std::make_unique<Connection>();
    const RegistryError error = candidate->OpenOnce(settings);
    if (error == RegistryError::kNone) {
      connection = std::move(candidate);
    }
    if (error != RegistryError::kBusy || std::chrono::steady_clock::now() >= deadline) {
      return error;
    }
    sqlite3_sleep(kRetryMilliseconds);
  }
}

RegistryError Connection::OpenOnce(const Settings& settings) {
  sqlite3* database = nullptr;
  const int flags =
      SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE;
  const char* const fileLayer = settings.fileLayer.empty() ? nullptr : settings.fileLayer.c_str();
  const int result = sqlite3_open_v2(settings.database.c_str(), &database, flags, fileLayer);
  m_database.reset(database);
  if (result != SQLITE_OK) {
    return ToRegistryError(result);
  }
  // Until the store is known to be sound, closing it must not move anything into it.
  Configure(database, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, true);
  const RegistryError error = MakeReady(settings);
  if (error == RegistryError::kNone) {
    Configure(database, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, false);
  }
  // Where the database takes no writes, what else cannot be opened is the log beside it.
  const bool lacksLog =
      error == RegistryError::kOther && sqlite3_db_readonly(database, "main") == 1;
  return lacksLog ? RegistryError::kReadOnly : error;
}

RegistryError Connection::MakeReady(const Settings& settings) {
  sqlite3* const database = m_database.get();
  sqlite3_busy_timeout(database, static_cast<int>(settings.busyLimit.count()));
  Configure(database, SQLITE_DBCONFIG_DEFENSIVE, true);
  Configure(database, SQLITE_DBCONFIG_ENABLE_TRIGGER, false);
  const int result = Execute(database, kConnectionSettings);
  RegistryError error = ToRegistryError(result);
  if (error == RegistryError::kNone) {
    error = PrepareSchema(database, settings.initialKeys);
  }
  if (error == RegistryError::kNone) {
    error = UseWriteAheadLog();
  }
  if (error == RegistryError::kNone) {
    error = m_store.Prepare(database);
  }
  return error;
}

RegistryError Connection::UseWriteAheadLog() const {
  if (sqlite3_db_readonly(m_database.get(), "main") == 1) {
    return RegistryError::kNone;
  }
  const int result = Execute(m_database.get(), "PRAGMA journal_mode = WAL");
  const RegistryError error = ToRegistryError(result);
  // A medium without shared memory, or another process that is in the database now, keeps it in
  // the other mode: every promise holds there too, only readers and writers wait for each other.
  return error == RegistryError::kBusy || error == RegistryError::kReadOnly ? RegistryError::kNone
                                                                            : error;
}

RegistryError Connection::Begin() const {
  int result = Execute(m_database.get(), "BEGIN IMMEDIATE");
  const RegistryError error = ToRegistryError(result);
  if (error != RegistryError::kReadOnly) {
    return error;
  }
  // The first reading fixes what the transaction sees.
  result = Execute(m_database.get(), "BEGIN; SELECT 1 FROM registry_key LIMIT 1");
  if (result != SQLITE_OK) {
    Rollback();
  }
  return ToRegistryError(result);
}

RegistryError Connection::Commit() const {
  const int result = Execute(m_database.get(), "COMMIT");
  if (result != SQLITE_OK) {
    Rollback();
  }
  return ToRegistryError(result);
}

void Connection::Rollback() const {
  m_store.NoteUndone();  // Also where the library did it by itself.
  if (sqlite3_get_autocommit(m_database.get()) != 0) {
    return;
  }
  [[maybe_unused]] const int result = Execute(m_database.get(), "ROLLBACK");
}

void Connection::Abandon() const {
  Configure(m_database.get(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, true);
}

}  // namespace sqlite
