#include "platform/wave_file/file_wave_out.h"

#include <cstddef>
#include <memory>
#include <span>
#include <utility>

#include "platform/wave_file/wave_file_writer.h"
#include "platform/wave_queue.h"

namespace wave_file {
namespace {

using platform::FileError;
using platform::WaveHeader;
using platform::WaveResult;

/// A file of its own beside the place where it is to go, from its making on.
class PartFile {
 public:
  PartFile(platform::FileSystem& files, const std::u16string& target)
      : m_files(files), m_target(target), m_path(target + u".part") {}
  PartFile(const PartFile&) = delete;
  PartFile& operator=(const PartFile&) = delete;
  ~PartFile() { Discard(); }

  [[nodiscard]] bool Create() {
    Discard();
    m_file = m_files
                 .Open(m_path, {.access = platform::FileAccess::kWrite,
                                .share = platform::FileShare::kNone,
                                .creation = platform::FileCreation::kCreateAlways})
                 .file;
    return m_file != nullptr;
  }

  [[nodiscard]] bool Fill(const platform::WaveFormat& format, std::span<const std::byte> samples) {
    return WriteWaveFile(*m_file, format, samples) && m_file->Flush() == FileError::kNone;
  }

  [[nodiscard]] bool MoveToTarget() {
    if (m_file->Close() != FileError::kNone) return false;
    if (m_files.Replace(m_path, m_target) != FileError::kNone) return false;
    m_file.reset();
    return true;
  }

  void Discard() {
    if (!m_file) return;
    m_file.reset();
    // There is nothing more to be done about one that stays; its name tells what it is.
    static_cast<void>(m_files.Delete(m_path));
  }

  [[nodiscard]] bool Exists() const { return m_file != nullptr; }

 private:
  platform::FileSystem& m_files;
  const std::u16string m_target;
  const std::u16string m_path;
  std::unique_ptr<platform::File> m_file;  ///< Null where there is none.
};

class FileOutDevice final : public platform::WaveOutDevice {
 public:
  FileOutDevice(const platform::WaveFormat& format, std::unique_ptr<PartFile> part)
      : m_format(format), m_part(std::move(part)) {}

  WaveResult Prepare(WaveHeader& header) override {
    return m_part ? m_queue.Prepare(header) : WaveResult::kNoDevice;
  }

  WaveResult Write(WaveHeader& header) override {
    if (!m_part) return WaveResult::kNoDevice;
    const WaveResult result = m_queue.Add(header);
    if (result != WaveResult::kOk || WriteFile(header)) return result;
    m_part->Discard();
    m_queue.Drop();
    return WaveResult::kFailed;
  }

  WaveResult Unprepare(WaveHeader& header) override {
    if (!m_part) return WaveResult::kNoDevice;
    m_queue.Release(header);
    return WaveResult::kOk;
  }

  WaveResult Reset() override {
    if (!m_part) return WaveResult::kNoDevice;
    m_queue.Drop();
    return WaveResult::kOk;
  }

  WaveResult Close() override {
    m_part.reset();
    m_queue.Drop();
    return WaveResult::kOk;
  }

 private:
  [[nodiscard]] bool WriteFile(const WaveHeader& header) {
    if (!m_part->Exists() && !m_part->Create()) return false;
    const std::span<const std::byte> bytes(header.data, header.bufferLength);
    return m_part->Fill(m_format, bytes.first(bytes.size() - bytes.size() % m_format.blockAlign)) &&
           m_part->MoveToTarget();
  }

  const platform::WaveFormat m_format;
  std::unique_ptr<PartFile> m_part;  ///< Null once closed.
  platform::WaveQueue m_queue;
};

}  // namespace

FileWaveOut::FileWaveOut(platform::FileSystem& files, std::u16string path)
    : m_files(files), m_path(std::move(path)) {}

platform::OpenedWaveOut FileWaveOut::Open(const platform::WaveFormat& format) {
  if (!platform::IsWholeBytePcm(format)) return {nullptr, WaveResult::kBadFormat};
  auto part = std::make_unique<PartFile>(m_files, m_path);
  if (!part->Create()) return {nullptr, WaveResult::kNoDevice};
  return {std::make_unique<FileOutDevice>(format, std::move(part)), WaveResult::kOk};
}

}  // namespace wave_file
