// Trimming of CVoiceMathematics. The file is the user's only recording of a tag, so it is not
// rewritten in place: the trimmed file is made next to it and takes its place in one step.

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>

#include "audio/wave_header.h"
#include "voicemath/sample_file.h"
#include "voicemath/voice_mathematics.h"

namespace voicemath {

using platform::Failure;
using platform::FileError;
using platform::Result;

namespace {

constexpr std::size_t kCopySamples = 1024;
constexpr std::size_t kCopyBytes = kCopySamples * kSampleBytes;

/// Copies samples to the trimmed file with one buffer.
///
/// The samples are written from byte 44 on. If the data begins before that byte, the copy has
/// always read, from the second buffer on, the end of what it had just written, since it worked on
/// the file itself. The same samples come out here, from the end of the buffer before.
class SampleCopier {
 public:
  SampleCopier(framework::CFile& from, platform::File& to, std::uint64_t offset)
      : m_from(from),
        m_to(to),
        m_offset(offset),
        m_overlap(audio::kWaveHeaderBytes - static_cast<std::size_t>(std::min<std::uint64_t>(
                                                offset, audio::kWaveHeaderBytes))) {}

  /// Copies one buffer, or its first `bytes`.
  [[nodiscard]] Result<void, FileError> Copy(std::uint64_t done, std::size_t bytes) {
    std::array<std::byte, audio::kWaveHeaderBytes> written{};
    std::copy_n(m_buffer.end() - static_cast<std::ptrdiff_t>(m_overlap), m_overlap,
                written.begin());
    const auto part = std::span(m_buffer).first(bytes);
    if (!ReadAt(m_from, m_offset + done, part)) {
      return Failure(FileError::kOther);
    }
    if (done > 0) {
      std::copy_n(written.begin(), std::min(m_overlap, bytes), part.begin());
    }
    return m_to.Write(part);
  }

 private:
  framework::CFile& m_from;
  platform::File& m_to;
  std::uint64_t m_offset;
  std::size_t m_overlap;
  std::array<std::byte, kCopyBytes> m_buffer{};
};

}  // namespace

bool CVoiceMathematics::TrimWaveFile() {
  m_trimError.reset();
  const std::uint32_t total = m_dataBytes / static_cast<std::uint32_t>(kSampleBytes);
  const bool differs = m_firstSample > 0 || m_lastSample < total - 1;
  if (!differs || m_firstSample >= m_lastSample) {
    return m_file.Flush().has_value();  // Its recorder left that to the last writer.
  }
  const std::uint32_t bytes =
      (m_lastSample - m_firstSample + 1) * static_cast<std::uint32_t>(kSampleBytes);
  const std::u16string path = m_file.GetFilePath();
  if (const auto trimmed = ReplaceByTrimmed(bytes); !trimmed) {
    m_trimError = trimmed.error();
    return false;
  }
  m_firstSample = 0;
  m_dataBytes = bytes;
  m_lastSample = bytes / static_cast<std::uint32_t>(kSampleBytes) - 1;
  // m_dataOffset stays, deliberately: it is 44 for the recorder's own files. For another file the
  // template begins as many samples late as the old header was longer.
  return m_file.Open(path, framework::CFile::modeReadWrite).has_value();
}

Result<void, FileError> CVoiceMathematics::ReplaceByTrimmed(std::uint32_t bytes) {
  const auto trimmed = m_files.OpenReplacement(m_file.GetFilePath());
  if (!trimmed) {
    return Failure(trimmed.error());
  }
  if (const auto written = WriteTrimmed((*trimmed)->GetFile(), bytes); !written) {
    return written;
  }
  m_file.Close();  // It was the holder of the earlier file.
  return (*trimmed)->Publish(platform::Durability::kNow);
}

Result<void, FileError> CVoiceMathematics::WriteTrimmed(platform::File& trimmed,
                                                        std::uint32_t bytes) {
  const auto format = audio::MonoPcm(audio::kRecordingBits, audio::kRecordingRate);
  auto written = trimmed.Write(audio::MakeWaveHeader(format, bytes));
  SampleCopier copier(m_file, trimmed, m_dataOffset + std::uint64_t{m_firstSample} * kSampleBytes);
  for (std::uint32_t done = 0; written && done < bytes;) {
    const std::uint32_t part = std::min<std::uint32_t>(bytes - done, kCopyBytes);
    written = copier.Copy(done, part);
    done += part;
  }
  return written;
}

}  // namespace voicemath
