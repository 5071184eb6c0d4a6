#include "tests/backends/sqlite/raw_database.h"

#include <sqlite3.h>

#include <fstream>
#include <iterator>

namespace support {

RawDatabase::RawDatabase(const std::filesystem::path& path) {
  [[maybe_unused]] const int result = sqlite3_open(path.c_str(), &m_database);
}

RawDatabase::~RawDatabase() { sqlite3_close(m_database); }

int RawDatabase::Execute(const std::string& sql) {
  return sqlite3_exec(m_database, sql.c_str(), nullptr, nullptr, nullptr);
}

std::string RawDatabase::Text(const std::string& sql) {
  std::string text;
  sqlite3_stmt* statement = nullptr;
  sqlite3_prepare_v2(m_database, sql.c_str(), -1, &statement, nullptr);
  if (sqlite3_step(statement) == SQLITE_ROW) {
    const auto* const data = reinterpret_cast<const char*>(sqlite3_column_text(statement, 0));
    if (data != nullptr) {
      text = data;
    }
  }
  sqlite3_finalize(statement);
  return text;
}

std::vector<std::byte> RawDatabase::Bytes(const std::string& sql) {
  std::vector<std::byte> bytes;
  sqlite3_stmt* statement = nullptr;
  sqlite3_prepare_v2(m_database, sql.c_str(), -1, &statement, nullptr);
  if (sqlite3_step(statement) == SQLITE_ROW) {
    const auto* const data = static_cast<const std::byte*>(sqlite3_column_blob(statement, 0));
    const int length = sqlite3_column_bytes(statement, 0);
    if (data != nullptr) {
      bytes.assign(data, data + length);
    }
  }
  sqlite3_finalize(statement);
  return bytes;
}

std::string FileContent(const std::filesystem::path& path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

void WriteFileContent(const std::filesystem::path& path, const std::string& content) {
  std::ofstream(path, std::ios::binary | std::ios::trunc) << content;
}

}  // namespace support
