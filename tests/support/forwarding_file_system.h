#pragma once

#include <string_view>

#include "platform/file_system.h"

namespace support {

/// Forwards every call to other files. A test overrides what it watches or changes.
class ForwardingFileSystem : public platform::FileSystem {
 public:
  explicit ForwardingFileSystem(platform::FileSystem& inner) : m_inner(inner) {}

  [[nodiscard]] platform::OpenedFile Open(std::u16string_view path,
                                          const platform::OpenMode& mode) override {
    return m_inner.Open(path, mode);
  }
  [[nodiscard]] platform::OpenedReplacement OpenReplacement(std::u16string_view path) override {
    return m_inner.OpenReplacement(path);
  }
  [[nodiscard]] platform::FileError Delete(std::u16string_view path) override {
    return m_inner.Delete(path);
  }
  [[nodiscard]] platform::FileError CreateFolder(std::u16string_view path) override {
    return m_inner.CreateFolder(path);
  }
  [[nodiscard]] platform::FileError FlushFolder(std::u16string_view path) override {
    return m_inner.FlushFolder(path);
  }
  [[nodiscard]] platform::StartedSearch FindFirst(std::u16string_view pattern) override {
    return m_inner.FindFirst(pattern);
  }

 private:
  platform::FileSystem& m_inner;
};

}  // namespace support
