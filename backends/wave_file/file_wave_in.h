#pragma once

#include <string>

#include "platform/file_system.h"
#include "platform/wave_in.h"

namespace wave_file {

/// A microphone that hears a wave file, from its beginning at every Open, and behind its end
/// silence. It needs no time: a buffer that is started is full. For machines without sound and for
/// scripts.
///
/// It converts nothing: a file that is not PCM in exactly the format asked for is kBadFormat. One
/// input where the file can be opened, else none.
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
