#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

namespace support {

/// A new, empty folder of the host, deleted with all it holds at the end.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "voxtrel.XXXXXX").string();
    if (mkdtemp(pattern.data()) != nullptr) m_path = pattern;
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder() {
    std::error_code ignored;
    if (!m_path.empty()) std::filesystem::remove_all(m_path, ignored);
  }

  /// Empty where the host would not make it.
  [[nodiscard]] const std::filesystem::path& Path() const { return m_path; }

 private:
  std::filesystem::path m_path;
};

}  // namespace support
