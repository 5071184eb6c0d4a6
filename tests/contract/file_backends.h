#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <string>
#include <string_view>

#include "platform/file_system.h"

namespace contract {

/// One way of reaching files, with an empty folder for a test.
class FileBackend {
 public:
  FileBackend() = default;
  FileBackend(const FileBackend&) = delete;
  FileBackend& operator=(const FileBackend&) = delete;
  virtual ~FileBackend() = default;

  [[nodiscard]] virtual platform::FileSystem& Files() = 0;

  /// A path in the test's folder; "/" in `name` stands for the separator of this kind of path.
  [[nodiscard]] virtual std::u16string Path(std::u16string_view name) = 0;

  /// Protects a file against writing, as a user would.
  virtual void Protect(std::u16string_view name) = 0;
};

struct FileBackendKind {
  const char* name;
  bool isCaseBlind;
  std::unique_ptr<FileBackend> (*make)();
};

std::ostream& operator<<(std::ostream& stream, const FileBackendKind& kind);

/// Returns a name with backslashes for its slashes.
[[nodiscard]] std::u16string WithBackslashes(std::u16string_view name);

/// The back ends of this system. Each system has one source file with them.
[[nodiscard]] std::vector<FileBackendKind> SystemFileBackends();

/// Every back end of the files, with the device's paths and with the host's.
[[nodiscard]] std::vector<FileBackendKind> AllFileBackends();

/// Base of the suites that run over each of them.
class FileContract : public testing::TestWithParam<FileBackendKind> {
 protected:
  [[nodiscard]] platform::FileSystem& Files() { return m_backend->Files(); }
  [[nodiscard]] std::u16string Path(std::u16string_view name) { return m_backend->Path(name); }
  void Protect(std::u16string_view name) { m_backend->Protect(name); }

  /// An open file that must exist after; a failure to open is a failure of the test.
  [[nodiscard]] std::unique_ptr<platform::File> MustOpen(std::u16string_view name,
                                                         const platform::OpenMode& mode);
  void Write(std::u16string_view name, std::string_view content);
  [[nodiscard]] std::string Read(std::u16string_view name);
  [[nodiscard]] auto Open(std::u16string_view name, const platform::OpenMode& mode) {
    return Files().Open(Path(name), mode);
  }

 private:
  const std::unique_ptr<FileBackend> m_backend = GetParam().make();
};

/// Name of a test's parameter.
[[nodiscard]] std::string BackendName(const testing::TestParamInfo<FileBackendKind>& info);

inline constexpr platform::OpenMode kReadAlone{
    platform::FileAccess::kRead, platform::FileShare::kNone, platform::FileCreation::kOpenExisting};
inline constexpr platform::OpenMode kReadTogether{
    platform::FileAccess::kRead, platform::FileShare::kRead, platform::FileCreation::kOpenExisting};
inline constexpr platform::OpenMode kWriteExisting{platform::FileAccess::kWrite,
                                                   platform::FileShare::kNone,
                                                   platform::FileCreation::kOpenExisting};
inline constexpr platform::OpenMode kReadWrite{platform::FileAccess::kReadWrite,
                                               platform::FileShare::kNone,
                                               platform::FileCreation::kOpenAlways};
inline constexpr platform::OpenMode kCreate{platform::FileAccess::kWrite,
                                            platform::FileShare::kNone,
                                            platform::FileCreation::kCreateAlways};
inline constexpr platform::OpenMode kLook{platform::FileAccess::kNone, platform::FileShare::kNone,
                                          platform::FileCreation::kOpenExisting};
inline constexpr platform::OpenMode kMake{platform::FileAccess::kNone, platform::FileShare::kNone,
                                          platform::FileCreation::kOpenAlways};

}  // namespace contract
