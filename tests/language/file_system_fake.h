#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"

/// A file system of one file, whose steps can be made to fail one by one.
class FileSystemFake : public platform::FileSystem {
 public:
  platform::OpenedFile Open(std::u16string_view path, const platform::OpenMode& mode) override {
    m_openedPath = path;
    m_mode = mode;
    if (m_openFails) return {nullptr, platform::FileError::kSharingViolation};
    return {std::make_unique<FileFake>(*this), platform::FileError::kNone};
  }
  platform::FileError Delete(std::u16string_view) override { return kRefused; }
  platform::FileError Replace(std::u16string_view, std::u16string_view) override {
    return kRefused;
  }
  platform::FileError CreateFolder(std::u16string_view) override { return kRefused; }
  platform::StartedSearch FindFirst(std::u16string_view) override { return {}; }

  std::vector<std::byte> m_content;
  bool m_openFails = false;
  bool m_lengthFails = false;
  bool m_readFails = false;
  std::optional<std::uint64_t> m_toldLength;  ///< Instead of the length of the content.

  std::u16string m_openedPath;
  platform::OpenMode m_mode{.access = platform::FileAccess::kNone};
  int m_openFiles = 0;

 private:
  static constexpr platform::FileError kRefused = platform::FileError::kReadOnly;

  class FileFake : public platform::File {
   public:
    explicit FileFake(FileSystemFake& files) : m_files(files) { ++m_files.m_openFiles; }
    ~FileFake() override { --m_files.m_openFiles; }

    std::optional<std::uint64_t> GetLength() override {
      if (m_files.m_lengthFails) return std::nullopt;
      return m_files.m_toldLength.value_or(m_files.m_content.size());
    }
    platform::FileError Seek(std::uint64_t) override { return kRefused; }
    std::optional<std::size_t> Read(std::span<std::byte> into) override {
      if (m_files.m_readFails) return std::nullopt;
      const std::size_t count = std::min(into.size(), m_files.m_content.size());
      std::copy_n(m_files.m_content.begin(), count, into.begin());
      return count;
    }
    platform::FileError Write(std::span<const std::byte>) override { return kRefused; }
    platform::FileError SetLength(std::uint64_t) override { return kRefused; }
    platform::FileError Flush() override { return kRefused; }
    platform::FileError Close() override { return platform::FileError::kNone; }

   private:
    FileSystemFake& m_files;
  };
};
