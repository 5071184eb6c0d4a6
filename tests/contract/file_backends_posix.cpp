#include <filesystem>

#include "backends/posix/posix_file_system.h"
#include "tests/contract/file_backends.h"
#include "tests/support/temp_folder.h"

namespace contract {
namespace {

class PosixBackend final : public FileBackend {
 public:
  explicit PosixBackend(bool isDevice) : m_isDevice(isDevice) {}

  platform::FileSystem& Files() override { return m_files; }
  std::u16string Path(std::u16string_view name) override {
    return m_isDevice ? u"\\" + WithBackslashes(name) : m_root.Text() + u"/" + std::u16string(name);
  }
  void Protect(std::u16string_view name) override {
    using std::filesystem::perms;
    std::filesystem::permissions(m_root.Path() / name,
                                 perms::owner_read | perms::group_read | perms::others_read);
  }

 private:
  support::TempFolder m_root;
  posix::PosixFileSystem m_files{m_root.Text()};
  const bool m_isDevice;
};

}  // namespace

std::vector<FileBackendKind> SystemFileBackends() {
  return {
      {"PosixDevice", true,
       []() -> std::unique_ptr<FileBackend> { return std::make_unique<PosixBackend>(true); }},
      {"PosixHost", false,
       []() -> std::unique_ptr<FileBackend> { return std::make_unique<PosixBackend>(false); }},
  };
}

}  // namespace contract
