#include "tests/contract/file_backends.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

#include "tests/machine/memory_file_system.h"
#include "tests/support/file_bytes.h"

namespace contract {
namespace {

class MemoryBackend final : public FileBackend {
 public:
  explicit MemoryBackend(bool isDevice) : m_isDevice(isDevice) {
    if (!m_files.CreateFolder(m_isDevice ? u"\\Base" : u"/base")) {
      throw std::runtime_error("no folder for the test");
    }
  }

  platform::FileSystem& Files() override { return m_files; }
  std::u16string Path(std::u16string_view name) override {
    return m_isDevice ? u"\\Base\\" + WithBackslashes(name) : u"/base/" + std::u16string(name);
  }
  void Protect(std::u16string_view name) override { m_files.SetReadOnly(Path(name), true); }

 private:
  machine::MemoryFileSystem m_files;
  const bool m_isDevice;
};

}  // namespace

std::u16string WithBackslashes(std::u16string_view name) {
  std::u16string path(name);
  std::ranges::replace(path, u'/', u'\\');
  return path;
}

std::ostream& operator<<(std::ostream& stream, const FileBackendKind& kind) {
  return stream << kind.name;
}

std::vector<FileBackendKind> AllFileBackends() {
  std::vector<FileBackendKind> kinds{
      {"MemoryDevice", true,
       []() -> std::unique_ptr<FileBackend> { return std::make_unique<MemoryBackend>(true); }},
      {"MemoryHost", false,
       []() -> std::unique_ptr<FileBackend> { return std::make_unique<MemoryBackend>(false); }},
  };
  std::ranges::copy(SystemFileBackends(), std::back_inserter(kinds));
  return kinds;
}

std::unique_ptr<platform::File> FileContract::MustOpen(std::u16string_view name,
                                                       const platform::OpenMode& mode) {
  auto opened = Files().Open(Path(name), mode);
  if (!opened) {
    throw std::runtime_error("a file of the test does not open");
  }
  return std::move(*opened);
}

void FileContract::Write(std::u16string_view name, std::string_view content) {
  ASSERT_TRUE(support::WriteWhole(Files(), Path(name), content));
}

std::string FileContract::Read(std::u16string_view name) {
  return support::ReadWhole(Files(), Path(name)).value_or("(not readable)");
}

std::string BackendName(const testing::TestParamInfo<FileBackendKind>& info) {
  return info.param.name;
}

}  // namespace contract
