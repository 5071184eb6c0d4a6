#pragma once

#include <string>

#include "platform/file_system.h"
#include "platform/wave_out.h"

namespace wave_file {

/// A speaker that writes what it is given into a wave file, in place of what it was given before.
/// It needs no time: a buffer that is written has been played. For machines without sound and for
/// scripts.
///
/// The file is written beside its place, under its name and ".part", and moved there when it is
/// whole: whatever fails, the file is the earlier one or the new one. Where it cannot be written,
/// or while another device is open, there is no device.
class FileWaveOut final : public platform::WaveOut {
 public:
  /// `files` outlives this and every device opened.
  FileWaveOut(platform::FileSystem& files, std::u16string path);

  [[nodiscard]] platform::OpenedWaveOut Open(const platform::WaveFormat& format) override;

 private:
  platform::FileSystem& m_files;
  const std::u16string m_path;
};

}  // namespace wave_file
