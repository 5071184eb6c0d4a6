#pragma once

#include <string>

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

  [[nodiscard]] std::uint32_t GetDeviceCount() override;
  [[nodiscard]] platform::Result<std::unique_ptr<platform::WaveInDevice>, platform::WaveResult>
  Open(const platform::WaveFormat& format) override;

 private:
  [[nodiscard]] platform::Result<std::unique_ptr<platform::File>, platform::FileError> OpenFile();

  platform::FileSystem& m_files;
  const std::u16string m_path;
};

}  // namespace wave_file
