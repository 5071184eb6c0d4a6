#include "backends/sqlite/connection.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string_view>
#include <system_error>
#include <utility>

#include "backends/sqlite/schema.h"
#include "backends/sqlite/sound_mark.h"

namespace sqlite {

using platform::Failure;
using platform::RegistryError;
using platform::Result;

namespace {

constexpr int kRetryMilliseconds = 5;

/// In bytes, with its names: a row of the longest value that a registry takes is shorter. What
/// another program made longer is not read into memory.
constexpr int kLongestRow = static_cast<int>(2 * platform::kMaxValueBytes);

// A change is on the medium when it returns; a file made by another hand is not trusted.
constexpr const char* kConnectionSettings =
    "PRAGMA synchronous = FULL;"
    "PRAGMA foreign_keys = ON;"
    "PRAGMA cell_size_check = ON;"
    "PRAGMA trusted_schema = OFF;"
    "PRAGMA temp_store = MEMORY";

void SetOption(sqlite3* database, int option, bool on) {
  sqlite3_db_config(database, option, on ? 1 : 0, nullptr);
}

/// The database as a file that nobody changes: then it is read without its log, and without the
/// index that a log needs.
std::string NameWithoutLog(const std::filesystem::path& database) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string name = "file:";
  for (const char character : database.native()) {
    if (character == '%' || character == '?' || character == '#') {
      const auto code = static_cast<unsigned char>(character);
      name += {'%', kDigits[code >> 4U], kDigits[code & 0xFU]};
    } else {
      name += character;
    }
  }
  return name + "?immutable=1";
}

/// Makes an empty file of its user alone if there is none. The library takes it for a new database,
/// and gives its rights to the files next to it. Whatever fails, the library reports it.
void MakePrivateFile(const std::filesystem::path& database) {
  const int file =
      ::open(database.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
  if (file != -1) {
    static_cast<void>(::fchmod(file, S_IRUSR | S_IWUSR));  // The umask may have left less.
    ::close(file);
  }
}

/// Frees the room of an index that could not be made whole. The caller has the database alone.
void RemoveIndex(const std::filesystem::path& database) {
  std::filesystem::path index = database;
  index += "-shm";
  std::error_code ignored;
  std::filesystem::remove(index, ignored);
}

bool IsMissing(const std::filesystem::path& database) {
  std::error_code error;
  return std::filesystem::status(database, error).type() == std::filesystem::file_type::not_found;
}

}  // namespace

std::filesystem::path FindLink(const std::filesystem::path& database) {
  for (const char* const suffix : {"", "-wal", "-shm", "-journal"}) {
    std::filesystem::path file = database;
    file += suffix;
    std::error_code ignored;
    if (std::filesystem::is_symlink(std::filesystem::symlink_status(file, ignored))) {
      return file;
    }
  }
  return {};
}

// There are three ways to open a store. To change it, the library makes what is missing. Alone, the
// index of the log is kept in memory, since a full disk has no room for it. To read it, nothing may
// be made: if the index cannot be made, the database is read as a file that nobody changes, but
// only if no log lies next to it, since the log may hold changes that the database does not have
// yet.
OpenedConnection Connection::Open(const Settings& settings) {
  // The library follows a link at the database itself, and makes its files next to the target.
  if (!FindLink(settings.database).empty()) {
    return Failure(RegistryError::kLink);
  }
  // Two processes that make the store at the same time can meet at a point at which the library
  // does not wait.
  const auto deadline = std::chrono::steady_clock::now() + settings.busyLimit;
  while (true) {
    OpenedConnection opened =
        settings.access == Access::kRead ? OpenToRead(settings) : OpenOnce(settings);
    if (opened || opened.error() != RegistryError::kBusy ||
        std::chrono::steady_clock::now() >= deadline) {
      return opened;
    }
    sqlite3_sleep(kRetryMilliseconds);
  }
}

OpenedConnection Connection::OpenOnce(const Settings& settings) {
  MakePrivateFile(settings.database);
  auto candidate = std::make_unique<Connection>();
  const auto opened = candidate->OpenFile(settings, settings.database.native(),
                                          SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
  if (opened) {
    SetOption(candidate->m_database.get(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, false);
    if (settings.access == Access::kChangeAlone) {
      RemoveIndex(settings.database);
    }
    return candidate;
  }
  // If the database takes no writes, what else cannot be opened is the log next to it.
  const bool lacksLog = opened.error() == RegistryError::kOther &&
                        candidate->m_database != nullptr &&
                        sqlite3_db_readonly(candidate->m_database.get(), "main") == 1;
  return Failure(lacksLog ? RegistryError::kReadOnly : opened.error());
}

OpenedConnection Connection::OpenToRead(const Settings& settings) {
  if (IsMissing(settings.database)) {
    return OpenEmpty(settings);
  }
  auto candidate = std::make_unique<Connection>();
  candidate->m_isReading = true;
  const auto opened =
      candidate->OpenFile(settings, settings.database.native(), SQLITE_OPEN_READONLY);
  if (opened) {
    return candidate;
  }
  const RegistryError error = opened.error();
  if (error == RegistryError::kNotFound) {
    return OpenEmpty(settings);
  }
  const bool lacksIndex = error == RegistryError::kOther || error == RegistryError::kFull ||
                          error == RegistryError::kReadOnly;
  if (lacksIndex && !HasLog(settings.database)) {
    // The index of the log cannot be made: the medium is full, or takes no writes. All changes are
    // in the database, so that it can be read by itself. With a log it cannot.
    auto alone = std::make_unique<Connection>();
    alone->m_isReading = true;
    if (alone->OpenFile(settings, NameWithoutLog(settings.database),
                        SQLITE_OPEN_READONLY | SQLITE_OPEN_URI)) {
      return alone;
    }
  }
  // Nobody wanted to write.
  return Failure(error == RegistryError::kReadOnly ? RegistryError::kOther : error);
}

OpenedConnection Connection::OpenEmpty(const Settings& settings) {
  auto standIn = std::make_unique<Connection>();
  standIn->m_isReading = true;
  standIn->m_isStandIn = true;
  if (const auto filled = standIn->FillInMemory(settings); !filled) {
    return Failure(filled.error());
  }
  return standIn;
}

Result<void, RegistryError> Connection::OpenFile(const Settings& settings, const std::string& name,
                                                 int flags) {
  sqlite3* database = nullptr;
  const char* const fileLayer = settings.fileLayer.empty() ? nullptr : settings.fileLayer.c_str();
  const int result = sqlite3_open_v2(
      name.c_str(), &database, flags | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE, fileLayer);
  m_database.reset(database);
  if (result != SQLITE_OK) {
    return ToResult(result);
  }
  // Until the store is known to be sound, closing it must not move anything into it.
  SetOption(database, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, true);
  const auto configured = Configure(settings);
  return configured ? MakeReady(settings) : configured;
}

Result<void, RegistryError> Connection::FillInMemory(const Settings& settings) {
  sqlite3* database = nullptr;
  const int result = sqlite3_open_v2(
      ":memory:", &database,
      SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE,
      nullptr);
  m_database.reset(database);
  return ToResult(result)
      .and_then([&] { return PrepareSchema(database, settings.initialKeys, Pages::kUnknown); })
      .and_then([&] { return Configure(settings); })
      .and_then([&] { return MakeReady(settings); });
}

Result<void, RegistryError> Connection::Configure(const Settings& settings) const {
  sqlite3* const database = m_database.get();
  sqlite3_busy_timeout(database, static_cast<int>(settings.busyLimit.count()));
  // A store that another hand has made may hold triggers, which would run with each change.
  SetOption(database, SQLITE_DBCONFIG_DEFENSIVE, true);
  SetOption(database, SQLITE_DBCONFIG_ENABLE_TRIGGER, false);
  int result = SQLITE_OK;
  if (settings.access == Access::kChangeAlone) {
    // Before the settings, which read the database and with it the index.
    result = Execute(database, "PRAGMA locking_mode = EXCLUSIVE");
  }
  if (result == SQLITE_OK) {
    result = Execute(database, kConnectionSettings);
  }
  if (result == SQLITE_OK && m_isReading) {
    result = Execute(database, "PRAGMA query_only = ON");
  }
  return ToResult(result);
}

Result<void, RegistryError> Connection::MakeReady(const Settings& settings) {
  sqlite3* const database = m_database.get();
  const SoundMark mark(m_isStandIn ? std::filesystem::path() : settings.database,
                       settings.findSoundMark);
  const Pages pages = mark.IsKnownSound() ? Pages::kKnownSound : Pages::kUnknown;
  const auto checked = m_isReading
                           ? CheckSchema(database, pages)
                           : PrepareSchema(database, settings.initialKeys, pages).and_then([this] {
                               return UseWriteAheadLog();
                             });
  if (!checked) {
    return checked;
  }
  mark.Keep();
  // After the check of all pages, which must not stumble over a row that is too long.
  sqlite3_limit(database, SQLITE_LIMIT_LENGTH, kLongestRow);
  return m_store.Prepare(database, settings.number);
}

Result<void, RegistryError> Connection::UseWriteAheadLog() const {
  if (sqlite3_db_readonly(m_database.get(), "main") == 1) {
    return {};
  }
  const auto used = ToResult(Execute(m_database.get(), "PRAGMA journal_mode = WAL"));
  // A medium without shared memory, or another process that is in the database now, keeps it in
  // the other mode: every promise holds there too, only readers and writers wait for each other.
  if (!used && (used.error() == RegistryError::kBusy || used.error() == RegistryError::kReadOnly)) {
    return {};
  }
  return used;
}

Result<void, RegistryError> Connection::Begin() const {
  if (!m_isReading) {
    const auto begun = ToResult(Execute(m_database.get(), "BEGIN IMMEDIATE"));
    if (begun || begun.error() != RegistryError::kReadOnly) {
      return begun;
    }
  }
  return BeginReading();
}

Result<void, RegistryError> Connection::BeginReading() const {
  // The first reading fixes what the transaction sees.
  const int result = Execute(m_database.get(), "BEGIN; SELECT 1 FROM registry_key LIMIT 1");
  if (result != SQLITE_OK) {
    Rollback();
  }
  return ToResult(result);
}

Result<void, RegistryError> Connection::Commit() const {
  const int result = Execute(m_database.get(), "COMMIT");
  if (result != SQLITE_OK) {
    Rollback();
  }
  return ToResult(result);
}

void Connection::Rollback() const {
  m_store.NoteUndone();  // Also if the library did it by itself.
  if (sqlite3_get_autocommit(m_database.get()) != 0) {
    return;
  }
  [[maybe_unused]] const int result = Execute(m_database.get(), "ROLLBACK");
}

void Connection::Abandon() const {
  SetOption(m_database.get(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, true);
}

}  // namespace sqlite
