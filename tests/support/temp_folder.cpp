#include "tests/support/temp_folder.h"

#include <cstdlib>
#include <stdexcept>
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
  std::string path = (std::filesystem::temp_directory_path() / "voxtrel-test-XXXXXX").string();
  if (::mkdtemp(path.data()) == nullptr) {
    throw std::runtime_error("no temporary folder");
  }
  m_path = path;
}

TempFolder::~TempFolder() { RemoveWithAll(m_path); }

std::u16string TempFolder::Text() const { return text::FromHostName(m_path.string()); }

}  // namespace support
