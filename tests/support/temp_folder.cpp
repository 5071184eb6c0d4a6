#include "tests/support/temp_folder.h"

#include <random>
#include <stdexcept>
#include <string>

#include "backends/text/utf.h"
#include "tests/support/host_files.h"

namespace support {
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

TempFolder::~TempFolder() { RemoveTree(m_path); }

std::u16string TempFolder::Text() const { return text::FromHostName(m_path.generic_string()); }

}  // namespace support
