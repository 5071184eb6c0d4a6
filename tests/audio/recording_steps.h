#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/clock.h"
#include "platform/file_system.h"
#include "platform/wave_in.h"

/// What a recorder did to file, device and clock, one behind the other.
using Steps = std::vector<std::string>;

/// A clock that does not wait.
class StepsClock final : public platform::Clock {
 public:
  explicit StepsClock(Steps& steps) : m_steps(steps) {}
  [[nodiscard]] std::uint32_t GetTickCount() override { return 0; }
  void Sleep(std::uint32_t milliseconds) override {
    m_steps.push_back("sleep " + std::to_string(milliseconds));
  }

 private:
  Steps& m_steps;
};

/// Forwards every call to another wave input. A header comes out of Prepare with one more flag, so
/// that it can be told whether the recorder sets the flags itself.
class StepsWaveIn final : public platform::WaveIn {
 public:
  StepsWaveIn(platform::WaveIn& inner, Steps& steps) : m_inner(inner), m_steps(steps) {}

  /// Devices opened from now on claim to have recorded so many bytes.
  void Claim(std::uint32_t bytes) { m_claimed = bytes; }

  [[nodiscard]] std::uint32_t GetDeviceCount() override {
    m_steps.push_back("count devices");
    return m_inner.GetDeviceCount();
  }

  [[nodiscard]] platform::OpenedWaveIn Open(const platform::WaveFormat& format) override {
    m_steps.push_back("open device");
    auto opened = m_inner.Open(format);
    if (opened.device) {
      opened.device = std::make_unique<Device>(m_steps, m_claimed, std::move(opened.device));
    }
    return opened;
  }

 private:
  class Device final : public platform::WaveInDevice {
   public:
    Device(Steps& steps, std::optional<std::uint32_t> claimed,
           std::unique_ptr<platform::WaveInDevice> inner)
        : m_steps(steps), m_claimed(claimed), m_inner(std::move(inner)) {}

    platform::WaveResult Prepare(platform::WaveHeader& header) override {
      m_steps.push_back("prepare " + std::to_string(header.bufferLength));
      const platform::WaveResult result = m_inner->Prepare(header);
      header.flags |= 0x10U;
      return result;
    }
    platform::WaveResult AddBuffer(platform::WaveHeader& header) override {
      m_steps.push_back("add buffer with flags " + std::to_string(header.flags));
      return m_inner->AddBuffer(header);
    }
    platform::WaveResult Start() override {
      m_steps.push_back("start");
      return m_inner->Start();
    }
    platform::WaveResult Unprepare(platform::WaveHeader& header) override {
      m_steps.push_back("unprepare");
      const platform::WaveResult result = m_inner->Unprepare(header);
      header.bytesRecorded = m_claimed.value_or(header.bytesRecorded);
      return result;
    }
    platform::WaveResult Reset() override {
      m_steps.push_back("reset");
      return m_inner->Reset();
    }
    platform::WaveResult Close() override {
      m_steps.push_back("close device");
      return m_inner->Close();
    }

   private:
    Steps& m_steps;
    const std::optional<std::uint32_t> m_claimed;
    const std::unique_ptr<platform::WaveInDevice> m_inner;
  };

  platform::WaveIn& m_inner;
  Steps& m_steps;
  std::optional<std::uint32_t> m_claimed;
};

/// Forwards every call to other files.
class StepsFileSystem final : public platform::FileSystem {
 public:
  StepsFileSystem(platform::FileSystem& inner, Steps& steps) : m_inner(inner), m_steps(steps) {}

  [[nodiscard]] platform::OpenedFile Open(std::u16string_view path,
                                          const platform::OpenMode& mode) override {
    const bool isAlone = mode.access == platform::FileAccess::kWrite &&
                         mode.share == platform::FileShare::kNone &&
                         mode.creation == platform::FileCreation::kCreateAlways;
    m_steps.push_back(isAlone ? "create file, not shared" : "open file otherwise");
    auto opened = m_inner.Open(path, mode);
    if (opened.file) {
      opened.file = std::make_unique<File>(m_steps, std::move(opened.file));
    }
    return opened;
  }
  [[nodiscard]] platform::FileError Delete(std::u16string_view path) override {
    m_steps.push_back("delete file");
    return m_inner.Delete(path);
  }
  [[nodiscard]] platform::FileError Replace(std::u16string_view from,
                                            std::u16string_view to) override {
    return m_inner.Replace(from, to);
  }
  [[nodiscard]] platform::FileError CreateFolder(std::u16string_view path) override {
    return m_inner.CreateFolder(path);
  }
  [[nodiscard]] platform::StartedSearch FindFirst(std::u16string_view pattern) override {
    return m_inner.FindFirst(pattern);
  }

 private:
  class File final : public platform::File {
   public:
    File(Steps& steps, std::unique_ptr<platform::File> inner)
        : m_steps(steps), m_inner(std::move(inner)) {}

    [[nodiscard]] std::optional<std::uint64_t> GetLength() override { return m_inner->GetLength(); }
    [[nodiscard]] platform::FileError Seek(std::uint64_t offset) override {
      return m_inner->Seek(offset);
    }
    [[nodiscard]] std::optional<std::size_t> Read(std::span<std::byte> into) override {
      return m_inner->Read(into);
    }
    [[nodiscard]] platform::FileError Write(std::span<const std::byte> bytes) override {
      m_steps.push_back("write " + std::to_string(bytes.size()));
      return m_inner->Write(bytes);
    }
    [[nodiscard]] platform::FileError SetLength(std::uint64_t length) override {
      return m_inner->SetLength(length);
    }
    [[nodiscard]] platform::FileError Flush() override {
      m_steps.push_back("flush");
      return m_inner->Flush();
    }
    [[nodiscard]] platform::FileError Close() override {
      m_steps.push_back("close file");
      return m_inner->Close();
    }

   private:
    Steps& m_steps;
    const std::unique_ptr<platform::File> m_inner;
  };

  platform::FileSystem& m_inner;
  Steps& m_steps;
};
