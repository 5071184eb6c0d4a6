#pragma once

#include <filesystem>
#include <string>

namespace support {

/// A new empty folder of the host that goes, with everything in it, at the end.
class TempFolder {
 public:
  TempFolder();
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  [[nodiscard]] const std::filesystem::path& Path() const { return m_path; }

  /// The path as the system's own interfaces take it.
  [[nodiscard]] std::u16string Text() const;

 private:
  std::filesystem::path m_path;
};

}  // namespace support
