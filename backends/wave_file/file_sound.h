#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/file_system.h"
#include "platform/wave_devices.h"

namespace wave_file {

/// A microphone that hears a wave file, from its beginning at every Open, and silence after its
/// end. It needs no time: a buffer that is started is full. It is made for machines without sound
/// and for scripts.
///
/// It converts nothing. Open fails with kBadFormat if the file is not PCM in exactly the format
/// asked for. There is one input if the file can be opened, else none.
class FileWaveIn final : public platform::WaveIn {
 public:
  /// `files` outlives this and every device opened.
  FileWaveIn(platform::FileSystem& files, std::u16string path);
  /// The same with a file that has no name and lies in memory, so that nothing of it is left if the
  /// process is killed.
  explicit FileWaveIn(std::vector<std::byte> bytes);

  [[nodiscard]] std::uint32_t GetDeviceCount() override;
  [[nodiscard]] platform::Result<std::unique_ptr<platform::WaveInDevice>, platform::WaveResult>
  Open(const platform::WaveFormat& format) override;

 private:
  using OpenedFile = platform::Result<std::unique_ptr<platform::File>, platform::FileError>;

  const std::function<OpenedFile()> m_open;
};

/// A speaker that writes what it is given into a wave file, in place of what it was given before.
/// It needs no time: a buffer that is written has been played. It is made for machines without
/// sound and for scripts.
///
/// If anything fails, the file is the earlier one or the new one. There is no device if the file
/// cannot be written, or while another device is open.
class FileWaveOut final : public platform::WaveOut {
 public:
  /// `files` outlives this and every device opened.
  FileWaveOut(platform::FileSystem& files, std::u16string path);

  [[nodiscard]] platform::Result<std::unique_ptr<platform::WaveOutDevice>, platform::WaveResult>
  Open(const platform::WaveFormat& format) override;

 private:
  platform::FileSystem& m_files;
  const std::u16string m_path;
  std::weak_ptr<void> m_device;  ///< The open device holds it as long as it is open.
};

}  // namespace wave_file
