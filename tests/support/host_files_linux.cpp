#include <algorithm>
#include <system_error>

#include "tests/support/host_files.h"

namespace support {

namespace fs = std::filesystem;

std::vector<std::string> NamesIn(const fs::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) {
    names.push_back(entry.path().filename().string());
  }
  std::ranges::sort(names);
  return names;
}

// A test may leave folders that cannot be entered; those are opened again first.
void RemoveTree(const fs::path& folder) {
  std::error_code ignored;
  fs::permissions(folder, fs::perms::owner_all, fs::perm_options::add, ignored);
  for (const auto& entry : fs::directory_iterator(folder, ignored)) {
    if (entry.is_directory(ignored) && !entry.is_symlink(ignored)) {
      RemoveTree(entry.path());
    }
  }
  fs::remove_all(folder, ignored);
}

}  // namespace support
