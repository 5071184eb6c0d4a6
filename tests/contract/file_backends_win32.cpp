#include <filesystem>

#include "backends/win32/win32_file_system.h"
#include "backends/win32/windows.h"
#include "tests/contract/file_backends.h"
#include "tests/support/temp_folder.h"

namespace contract {
namespace {

class Win32Backend final : public FileBackend {
 public:
  explicit Win32Backend(bool isDevice) : m_isDevice(isDevice) {}

  platform::FileSystem& Files() override { return m_files; }
  std::u16string Path(std::u16string_view name) override {
    return m_isDevice ? u"\\" + WithBackslashes(name) : m_root.Text() + u"/" + std::u16string(name);
  }
  void Protect(std::u16string_view name) override {
    ::SetFileAttributesW((m_root.Path() / name).c_str(), FILE_ATTRIBUTE_READONLY);
  }

 private:
  support::TempFolder m_root;
  win32::Win32FileSystem m_files{m_root.Text()};
  const bool m_isDevice;
};

}  // namespace

std::vector<FileBackendKind> SystemFileBackends() {
  return {
      {"Win32Device", true,
       []() -> std::unique_ptr<FileBackend> { return std::make_unique<Win32Backend>(true); }},
      {"Win32Host", true,
       []() -> std::unique_ptr<FileBackend> { return std::make_unique<Win32Backend>(false); }},
  };
}

}  // namespace contract
