#pragma once

#include <string_view>

#include "platform/file_system.h"

namespace support {

/// Forwards every call to other files. A test overrides what it watches or changes.
class ForwardingFileSystem : public platform::FileSystem {
 public:
  explicit ForwardingFileSystem(platform::FileSystem& inner) : m_inner(inner) {}

  [[nodiscard]] platform::Result<std::unique_ptr<platform::File>, platform::FileError> Open(
      std::u16string_view path, const platform::OpenMode& mode) override {
    return m_inner.Open(path, mode);
  }
  [[nodiscard]] platform::Result<std::unique_ptr<platform::Replacement>, platform::FileError>
  OpenReplacement(std::u16string_view path) override {
    return m_inner.OpenReplacement(path);
  }
  [[nodiscard]] platform::Result<void, platform::FileError> Delete(
      std::u16string_view path) override {
    return m_inner.Delete(path);
  }
  [[nodiscard]] platform::Result<void, platform::FileError> CreateFolder(
      std::u16string_view path) override {
    return m_inner.CreateFolder(path);
  }
  [[nodiscard]] platform::Result<void, platform::FileError> FlushFolder(
      std::u16string_view path) override {
    return m_inner.FlushFolder(path);
  }
  [[nodiscard]] platform::Result<std::unique_ptr<platform::FileSearch>, platform::FileError> Find(
      std::u16string_view pattern) override {
    return m_inner.Find(pattern);
  }

 private:
  platform::FileSystem& m_inner;
};

}  // namespace support
