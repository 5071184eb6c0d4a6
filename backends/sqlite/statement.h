#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/registry.h"

struct sqlite3;
struct sqlite3_stmt;

namespace sqlite {

// What the library gives, in types that clean up after themselves and in the registry's words. All
// SQL of the registry runs through this file.

/// Returns the registry's word for a result code of the library that is a failure.
[[nodiscard]] platform::RegistryError ToRegistryError(int resultCode);

/// As ToRegistryError, for any result code.
[[nodiscard]] platform::Result<void, platform::RegistryError> ToResult(int resultCode);

struct CloseDatabase {
  void operator()(sqlite3* database) const;
};
using Database = std::unique_ptr<sqlite3, CloseDatabase>;

/// One prepared statement, to be run any number of times.
class Statement {
 public:
  /// Returns the library's result code.
  [[nodiscard]] int Prepare(sqlite3* database, const char* sql);

 private:
  friend class Run;

  struct Finalize {
    void operator()(sqlite3_stmt* statement) const;
  };
  std::unique_ptr<sqlite3_stmt, Finalize> m_statement;
};

/// One run of a statement, from its parameters to its rows. What is bound is not copied and must
/// outlive the run. The destructor makes the statement ready for the next run, which also ends the
/// reading that it began.
class Run {
 public:
  explicit Run(const Statement& statement);
  Run(const Run&) = delete;
  Run& operator=(const Run&) = delete;
  ~Run();

  // Parameters are bound in their order.
  Run& Integer(std::int64_t value);
  Run& Text(std::u16string_view value);
  Run& Bytes(std::span<const std::byte> value);

  /// Returns the library's result code, that of a parameter which could not be bound included.
  [[nodiscard]] int Step();

  // Columns of the row that Step reached, 0-based.
  [[nodiscard]] std::int64_t IntegerAt(int column) const;
  [[nodiscard]] std::u16string TextAt(int column) const;
  [[nodiscard]] std::vector<std::byte> BytesAt(int column) const;

 private:
  void Note(int resultCode);

  sqlite3_stmt* m_statement;
  int m_parameters = 0;
  int m_bindResult;
};

/// Runs `sql`, one or more statements without parameters, and drops their rows.
[[nodiscard]] int Execute(sqlite3* database, const char* sql);

/// Runs `sql`, one statement without parameters. Returns the integer in its first row. Fails with
/// the library's result code.
[[nodiscard]] platform::Result<std::int64_t, int> QueryInteger(sqlite3* database, const char* sql);

}  // namespace sqlite
