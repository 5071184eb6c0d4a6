#include <cstddef>
#include <memory>
#include <span>
#include <utility>

#include "backends/wave_file/file_sound.h"
#include "backends/wave_file/riff_file.h"

// A file in the place of the loudspeaker: each sound that is played replaces it.
namespace wave_file {
namespace {

using platform::WaveHeader;
using platform::WaveResult;

/// Writes each sound when it is queued, into a file that takes the place of the earlier one in one
/// step. The file of the first sound is begun by Open, which so finds out whether there can be one.
class FileOutDevice final : public platform::WaveOutDevice {
 public:
  /// `next` is the file of the first sound.
  FileOutDevice(platform::FileSystem& files, std::u16string path,
                const platform::WaveFormat& format, std::unique_ptr<platform::Replacement> next,
                std::shared_ptr<void> turn)
      : m_files(files),
        m_path(std::move(path)),
        m_format(format),
        m_next(std::move(next)),
        m_turn(std::move(turn)) {}

  WaveResult Prepare(WaveHeader& header) override {
    return m_turn ? m_queue.Prepare(header) : WaveResult::kNoDevice;
  }

  WaveResult Write(WaveHeader& header) override {
    if (!m_turn) return WaveResult::kNoDevice;
    const WaveResult result = m_queue.Add(header);
    if (result != WaveResult::kOk || WriteFile(header)) return result;
    m_queue.Drop();
    return WaveResult::kFailed;
  }

  WaveResult Unprepare(WaveHeader& header) override {
    if (!m_turn) return WaveResult::kNoDevice;
    m_queue.Release(header);
    return WaveResult::kOk;
  }

  WaveResult Reset() override {
    if (!m_turn) return WaveResult::kNoDevice;
    m_queue.Drop();
    return WaveResult::kOk;
  }

  WaveResult Close() override {
    m_next.reset();
    m_turn.reset();
    m_queue.Drop();
    return WaveResult::kOk;
  }

 private:
  [[nodiscard]] bool WriteFile(const WaveHeader& header) {
    std::unique_ptr<platform::Replacement> file = std::move(m_next);
    if (!file) {
      auto made = m_files.OpenReplacement(m_path);
      if (!made) return false;
      file = std::move(*made);
    }
    const std::span<const std::byte> bytes(header.data, header.bufferLength);
    return WriteWaveFile(file->GetFile(), m_format,
                         bytes.first(bytes.size() - bytes.size() % m_format.blockAlign)) &&
           file->Publish(platform::Durability::kNow);
  }

  platform::FileSystem& m_files;
  const std::u16string m_path;
  const platform::WaveFormat m_format;
  std::unique_ptr<platform::Replacement> m_next;  ///< Null after the first sound.
  std::shared_ptr<void> m_turn;                   ///< Null after Close.
  platform::WaveQueue m_queue;
};

}  // namespace

FileWaveOut::FileWaveOut(platform::FileSystem& files, std::u16string path)
    : m_files(files), m_path(std::move(path)) {}

platform::Result<std::unique_ptr<platform::WaveOutDevice>, platform::WaveResult> FileWaveOut::Open(
    const platform::WaveFormat& format) {
  if (!platform::IsWholeBytePcm(format)) return platform::Failure(WaveResult::kBadFormat);
  // One device at a time, like a loudspeaker: two would replace the file of each other.
  if (!m_device.expired()) return platform::Failure(WaveResult::kNoDevice);
  auto next = m_files.OpenReplacement(m_path);
  if (!next) return platform::Failure(WaveResult::kNoDevice);
  auto turn = std::make_shared<char>();
  m_device = turn;
  return std::make_unique<FileOutDevice>(m_files, m_path, format, std::move(*next),
                                         std::move(turn));
}

}  // namespace wave_file
