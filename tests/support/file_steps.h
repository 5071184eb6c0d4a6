#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/file_system.h"
#include "tests/support/forwarding_file_system.h"

namespace support {

/// What was done to files and devices, one behind the other.
using Steps = std::vector<std::string>;

/// Forwards every call to other files, and notes opening, writing, flushing, closing and deleting.
class StepsFileSystem final : public ForwardingFileSystem {
 public:
  StepsFileSystem(platform::FileSystem& inner, Steps& steps)
      : ForwardingFileSystem(inner), m_steps(steps) {}

  [[nodiscard]] platform::Result<std::unique_ptr<platform::File>, platform::FileError> Open(
      std::u16string_view path, const platform::OpenMode& mode) override {
    m_steps.push_back(Describe(mode));
    auto opened = ForwardingFileSystem::Open(path, mode);
    if (opened) {
      opened = std::make_unique<File>(m_steps, std::move(*opened));
    }
    return opened;
  }
  [[nodiscard]] platform::Result<std::unique_ptr<platform::Replacement>, platform::FileError>
  OpenReplacement(std::u16string_view path) override {
    m_steps.push_back("open replacement");
    auto opened = ForwardingFileSystem::OpenReplacement(path);
    if (opened) {
      opened = std::make_unique<Replacement>(m_steps, std::move(*opened));
    }
    return opened;
  }
  [[nodiscard]] platform::Result<void, platform::FileError> FlushFolder(
      std::u16string_view path) override {
    m_steps.push_back("flush folder");
    return ForwardingFileSystem::FlushFolder(path);
  }
  [[nodiscard]] platform::Result<void, platform::FileError> Delete(
      std::u16string_view path) override {
    m_steps.push_back("delete file");
    return ForwardingFileSystem::Delete(path);
  }

 private:
  [[nodiscard]] static std::string Describe(const platform::OpenMode& mode) {
    static constexpr std::array kAccesses{"for nothing", "for reading", "for writing", "for both"};
    static constexpr std::array kShares{"alone", "with readers"};
    static constexpr std::array kCreations{"existing", "always", "created or emptied", "created"};
    return std::string("open ") + kAccesses[static_cast<std::size_t>(mode.access)] + ", " +
           kShares[static_cast<std::size_t>(mode.share)] + ", " +
           kCreations[static_cast<std::size_t>(mode.creation)];
  }

  class File final : public platform::File {
   public:
    File(Steps& steps, std::unique_ptr<platform::File> inner)
        : m_steps(steps), m_owned(std::move(inner)), m_inner(m_owned.get()) {}
    File(Steps& steps, platform::File& inner) : m_steps(steps), m_inner(&inner) {}

    [[nodiscard]] platform::Result<std::uint64_t, platform::FileError> GetLength() override {
      return m_inner->GetLength();
    }
    [[nodiscard]] platform::Result<void, platform::FileError> Seek(std::uint64_t offset) override {
      return m_inner->Seek(offset);
    }
    [[nodiscard]] platform::Result<std::size_t, platform::FileError> Read(
        std::span<std::byte> into) override {
      return m_inner->Read(into);
    }
    [[nodiscard]] platform::Result<void, platform::FileError> Write(
        std::span<const std::byte> bytes) override {
      m_steps.push_back("write " + std::to_string(bytes.size()));
      return m_inner->Write(bytes);
    }
    [[nodiscard]] platform::Result<void, platform::FileError> SetLength(
        std::uint64_t length) override {
      return m_inner->SetLength(length);
    }
    [[nodiscard]] platform::Result<void, platform::FileError> Flush() override {
      m_steps.push_back("flush");
      return m_inner->Flush();
    }
    [[nodiscard]] platform::Result<void, platform::FileError> Close() override {
      m_steps.push_back("close file");
      return m_inner->Close();
    }

   private:
    Steps& m_steps;
    const std::unique_ptr<platform::File> m_owned;  ///< Null if somebody else owns it.
    platform::File* const m_inner;
  };

  class Replacement final : public platform::Replacement {
   public:
    Replacement(Steps& steps, std::unique_ptr<platform::Replacement> inner)
        : m_steps(steps), m_inner(std::move(inner)), m_file(steps, m_inner->GetFile()) {}

    [[nodiscard]] platform::File& GetFile() override { return m_file; }
    [[nodiscard]] platform::Result<void, platform::FileError> Publish(
        platform::Durability durability) override {
      m_steps.push_back(durability == platform::Durability::kNow ? "publish" : "publish for later");
      return m_inner->Publish(durability);
    }

   private:
    Steps& m_steps;
    const std::unique_ptr<platform::Replacement> m_inner;
    File m_file;
  };

  Steps& m_steps;
};

}  // namespace support
