#include "tests/support/temp_folder.h"

#include <random>
#include <stdexcept>
#include <string>
#include <system_error>

#include "backends/text/utf.h"

namespace support {
namespace {

/// A test may leave folders that cannot be entered; those are opened again first.
void RemoveWithAll(const std::filesystem::path& path) {
  namespace fs = std::filesystem;
  std::error_code ignored;
  fs::permissions(path, fs::perms::owner_all, fs::perm_options::add, ignored);
  for (const auto& entry : fs::directory_iterator(path, ignored)) {
    if (entry.is_directory(ignored) && !entry.is_symlink(ignored)) {
      RemoveWithAll(entry.path());
    }
  }
  fs::remove_all(path, ignored);
}

}  // namespace

TempFolder::TempFolder() {
  namespace fs = std::filesystem;
  constexpr int kAttempts = 100;
  std::random_device random;
  for (int i = 0; i < kAttempts; ++i) {
    m_path = fs::temp_directory_path() / ("voxtrel-test-" + std::to_string(random()));
    if (fs::create_directory(m_path)) {
      fs::permissions(m_path, fs::perms::owner_all);
      return;
    }
  }
  throw std::runtime_error("no temporary folder");
}

TempFolder::~TempFolder() { RemoveWithAll(m_path); }

std::u16string TempFolder::Text() const { return text::FromHostName(m_path.generic_string()); }

}  // namespace support
