#include "backends/sqlite/statement.h"

#include <sqlite3.h>

namespace sqlite {

using platform::RegistryError;

namespace {

constexpr void (*kNotCopied)(void*) = nullptr;

}  // namespace

RegistryError ToRegistryError(int resultCode) {
  // A change below a key that is gone breaks the reference to it.
  if (resultCode == SQLITE_CONSTRAINT_FOREIGNKEY) {
    return RegistryError::kNotFound;
  }
  // Even a reader makes the index next to the log. If that has no room, the library does not report
  // a full medium.
  if (resultCode == SQLITE_IOERR_SHMSIZE) {
    return RegistryError::kFull;
  }
  constexpr int kPrimaryCode = 0xFF;
  switch (resultCode & kPrimaryCode) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
    case SQLITE_PROTOCOL:
      return RegistryError::kBusy;
    case SQLITE_READONLY:
    case SQLITE_PERM:
      return RegistryError::kReadOnly;
    case SQLITE_FULL:
      return RegistryError::kFull;
    case SQLITE_TOOBIG:
      return RegistryError::kInvalid;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
    case SQLITE_FORMAT:
      return RegistryError::kDamaged;
    default:
      return RegistryError::kOther;
  }
}

platform::Result<void, RegistryError> ToResult(int resultCode) {
  if (resultCode == SQLITE_OK || resultCode == SQLITE_ROW || resultCode == SQLITE_DONE) {
    return {};
  }
  return platform::Failure(ToRegistryError(resultCode));
}

void CloseDatabase::operator()(sqlite3* database) const { sqlite3_close_v2(database); }

void Statement::Finalize::operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }

int Statement::Prepare(sqlite3* database, const char* sql) {
  sqlite3_stmt* statement = nullptr;
  const int result =
      sqlite3_prepare_v3(database, sql, -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
  m_statement.reset(statement);
  return result;
}

Run::Run(const Statement& statement)
    : m_statement(statement.m_statement.get()), m_bindResult(SQLITE_OK) {}

Run::~Run() {
  sqlite3_reset(m_statement);
  sqlite3_clear_bindings(m_statement);
}

Run& Run::Integer(std::int64_t value) {
  Note(sqlite3_bind_int64(m_statement, ++m_parameters, value));
  return *this;
}

Run& Run::Text(std::u16string_view value) {
  // A null pointer would be bound as NULL, not as the empty text.
  const char16_t* const data = value.empty() ? u"" : value.data();
  Note(sqlite3_bind_text64(m_statement, ++m_parameters, reinterpret_cast<const char*>(data),
                           value.size() * sizeof(char16_t), kNotCopied, SQLITE_UTF16));
  return *this;
}

Run& Run::Bytes(std::span<const std::byte> value) {
  const void* const data = value.empty() ? static_cast<const void*>("") : value.data();
  Note(sqlite3_bind_blob64(m_statement, ++m_parameters, data, value.size(), kNotCopied));
  return *this;
}

int Run::Step() { return m_bindResult == SQLITE_OK ? sqlite3_step(m_statement) : m_bindResult; }

std::int64_t Run::IntegerAt(int column) const { return sqlite3_column_int64(m_statement, column); }

std::u16string Run::TextAt(int column) const {
  const void* const data = sqlite3_column_text16(m_statement, column);
  const auto bytes = static_cast<std::size_t>(sqlite3_column_bytes16(m_statement, column));
  if (data == nullptr) {
    return {};
  }
  return {static_cast<const char16_t*>(data), bytes / sizeof(char16_t)};
}

std::vector<std::byte> Run::BytesAt(int column) const {
  const auto* const data = static_cast<const std::byte*>(sqlite3_column_blob(m_statement, column));
  const auto length = static_cast<std::size_t>(sqlite3_column_bytes(m_statement, column));
  if (data == nullptr) {
    return {};
  }
  return {data, data + length};
}

void Run::Note(int resultCode) {
  if (m_bindResult == SQLITE_OK) {
    m_bindResult = resultCode;
  }
}

int Execute(sqlite3* database, const char* sql) {
  return sqlite3_exec(database, sql, nullptr, nullptr, nullptr);
}

platform::Result<std::int64_t, int> QueryInteger(sqlite3* database, const char* sql) {
  Statement statement;
  if (const int result = statement.Prepare(database, sql); result != SQLITE_OK) {
    return platform::Failure(result);
  }
  Run run(statement);
  const int result = run.Step();
  if (result == SQLITE_ROW) {
    return run.IntegerAt(0);
  }
  // Each of these statements has a row in every whole database.
  return platform::Failure(result == SQLITE_DONE ? SQLITE_CORRUPT : result);
}

}  // namespace sqlite
