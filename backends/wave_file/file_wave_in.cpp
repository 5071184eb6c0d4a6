#include <algorithm>
#include <cstddef>
#include <memory>
#include <span>
#include <utility>

#include "backends/wave_file/file_sound.h"
#include "backends/wave_file/riff_file.h"

namespace wave_file {
namespace {

using platform::WaveHeader;
using platform::WaveResult;
using FileDone = platform::Result<void, platform::FileError>;

const FileDone kReadOnly = platform::Failure(platform::FileError::kAccessDenied);

/// A file in memory, to be read.
class HeldFile final : public platform::File {
 public:
  explicit HeldFile(std::shared_ptr<const std::vector<std::byte>> bytes)
      : m_bytes(std::move(bytes)) {}

  FileDone Seek(std::uint64_t offset) override {
    m_position = static_cast<std::size_t>(std::min<std::uint64_t>(offset, m_bytes->size()));
    return {};
  }
  platform::Result<std::size_t, platform::FileError> Read(std::span<std::byte> into) override {
    const std::size_t count = std::min(into.size(), m_bytes->size() - m_position);
    std::copy_n(m_bytes->data() + m_position, count, into.data());
    m_position += count;
    return count;
  }
  platform::Result<std::uint64_t, platform::FileError> GetLength() override {
    return m_bytes->size();
  }
  FileDone Write(std::span<const std::byte> /*bytes*/) override { return kReadOnly; }
  FileDone SetLength(std::uint64_t /*length*/) override { return kReadOnly; }
  FileDone Flush() override { return {}; }
  FileDone Close() override { return {}; }

 private:
  const std::shared_ptr<const std::vector<std::byte>> m_bytes;
  std::size_t m_position = 0;
};

/// Reads a file's samples into the queued header when Unprepare or Reset asks for them, and not at
/// Start: headers and their memory are touched only within these calls.
class FileDevice final : public platform::WaveInDevice {
 public:
  FileDevice(std::unique_ptr<platform::File> file, const WaveFileLayout& layout)
      : m_file(std::move(file)), m_offset(layout.dataOffset), m_left(layout.dataBytes) {}

  WaveResult Prepare(WaveHeader& header) override {
    return m_file ? m_queue.Prepare(header) : WaveResult::kNoDevice;
  }

  WaveResult AddBuffer(WaveHeader& header) override {
    return m_file ? m_queue.Add(header) : WaveResult::kNoDevice;
  }

  WaveResult Start() override {
    if (!m_file) return WaveResult::kNoDevice;
    if (m_queue.Queued() == nullptr) return WaveResult::kNotPrepared;
    m_started = true;
    return WaveResult::kOk;
  }

  WaveResult Unprepare(WaveHeader& header) override {
    if (!m_file) return WaveResult::kNoDevice;
    if (m_queue.Holds(header)) {
      if (!m_started) return WaveResult::kStillPlaying;
      if (!Fill(header)) return WaveResult::kNoDevice;
      m_started = false;
    }
    m_queue.Release(header);
    return WaveResult::kOk;
  }

  WaveResult Reset() override {
    if (!m_file) return WaveResult::kNoDevice;
    // A file that can no longer be read gives back nothing.
    if (m_started) static_cast<void>(Fill(*m_queue.Queued()));
    m_started = false;
    m_queue.Drop();
    return WaveResult::kOk;
  }

  WaveResult Close() override {
    m_file.reset();
    m_started = false;
    m_queue.Drop();
    return WaveResult::kOk;
  }

 private:
  /// Fails if the file cannot be read. The header then holds nothing.
  [[nodiscard]] platform::Result<void, platform::FileError> Fill(WaveHeader& header) {
    const std::span<std::byte> memory(header.data, header.bufferLength);
    const auto sound = memory.first(
        static_cast<std::size_t>(std::min<std::uint64_t>(m_left, header.bufferLength)));
    const auto count = m_file->Seek(m_offset).and_then([&] { return m_file->Read(sound); });
    if (!count) return platform::Failure(count.error());
    // A file that is shorter than the recording goes on in silence, as a microphone would.
    std::ranges::fill(memory.subspan(*count), std::byte{0});
    // Counted by what was asked for, so a file that has become shorter stays silent from there on.
    m_offset += sound.size();
    m_left -= sound.size();
    header.bytesRecorded = header.bufferLength;
    return {};
  }

  std::unique_ptr<platform::File> m_file;
  std::uint64_t m_offset;
  std::uint64_t m_left;
  platform::WaveQueue m_queue;
  bool m_started = false;  ///< Never without a queued header.
};

}  // namespace

FileWaveIn::FileWaveIn(platform::FileSystem& files, std::u16string path)
    : m_open([&files, path = std::move(path)] {
        return files.Open(path, {.access = platform::FileAccess::kRead,
                                 .share = platform::FileShare::kRead,
                                 .creation = platform::FileCreation::kOpenExisting});
      }) {}

FileWaveIn::FileWaveIn(std::vector<std::byte> bytes)
    : m_open([shared = std::make_shared<const std::vector<std::byte>>(std::move(bytes))] {
        return OpenedFile(std::make_unique<HeldFile>(shared));
      }) {}

std::uint32_t FileWaveIn::GetDeviceCount() { return m_open() ? 1 : 0; }

platform::Result<std::unique_ptr<platform::WaveInDevice>, platform::WaveResult> FileWaveIn::Open(
    const platform::WaveFormat& format) {
  auto file = m_open();
  if (!file) return platform::Failure(WaveResult::kNoDevice);
  const auto layout = ReadWaveFileLayout(**file);
  if (!layout || layout->format != format) return platform::Failure(WaveResult::kBadFormat);
  return std::make_unique<FileDevice>(std::move(*file), *layout);
}

}  // namespace wave_file
