#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace sqlite {

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

/// Runs `sql`, one statement without parameters, and stores the integer in its first row.
[[nodiscard]] int QueryInteger(sqlite3* database, const char* sql, std::int64_t& value);

}  // namespace sqlite
