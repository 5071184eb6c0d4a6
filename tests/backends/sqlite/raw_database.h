#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

struct sqlite3;

namespace support {

/// A database reached with the library alone, as another program reaches it.
class RawDatabase {
 public:
  explicit RawDatabase(const std::filesystem::path& path);
  RawDatabase(const RawDatabase&) = delete;
  RawDatabase& operator=(const RawDatabase&) = delete;
  ~RawDatabase();

  /// Runs statements and drops their rows; the library's result code.
  [[nodiscard]] int Execute(const std::string& sql);

  /// The first column of the first row as text, in UTF-8; empty without a row.
  [[nodiscard]] std::string Text(const std::string& sql);

  /// The first column of the first row as bytes.
  [[nodiscard]] std::vector<std::byte> Bytes(const std::string& sql);

 private:
  sqlite3* m_database = nullptr;
};

/// The whole content of a file of the host.
[[nodiscard]] std::string FileContent(const std::filesystem::path& path);
void WriteFileContent(const std::filesystem::path& path, const std::string& content);

}  // namespace support
