// The player of WaveDevice. It hands the whole sound to the device as one buffer and sleeps for a
// time that it has computed. Nobody waits for a notice of the end, which some devices never give.

#include <algorithm>
#include <cstring>
#include <exception>
#include <limits>
#include <new>
#include <span>

#include "audio/wave_device.h"
#include "audio/wave_header.h"
#include "platform/file_system.h"

namespace audio {

using platform::WaveResult;

namespace {

constexpr std::size_t kSearchStep = 4;  ///< The data is looked for at multiples of this.
constexpr std::size_t kChunkHeaderBytes = 8;
constexpr std::uint32_t kPlayerRetryWait = 200;
constexpr std::uint64_t kMillisecondsInASecond = 1000;
constexpr std::uint64_t kExtraWait = 300;

bool HasIdAt(std::span<const std::byte> view, std::size_t at, const char* id) {
  return std::memcmp(view.data() + at, id, 4) == 0;
}

std::uint16_t Number16At(std::span<const std::byte> view, std::size_t at) {
  return platform::LoadLittleEndian16(view.subspan(at).first<2>());
}

std::uint32_t Number32At(std::span<const std::byte> view, std::size_t at) {
  return platform::LoadLittleEndian32(view.subspan(at).first<4>());
}

PlayCode CheckHeader(std::span<const std::byte> view) {
  if (view.size() < kWaveHeaderBytes) {
    return kSoundTooShort;
  }
  // The offsets are those of the 44-byte header, whatever chunks the file really has.
  if (!HasIdAt(view, 0, "RIFF")) {
    return kSoundNoRiff;
  }
  if (!HasIdAt(view, 8, "WAVE")) {
    return kSoundNoWave;
  }
  return Number16At(view, 20) == platform::kFormatTagPcm ? kPlayed : kSoundNotPcm;
}

/// Returns the samples, which follow the first "data" id of the whole file. Fails with kSoundNoData
/// if there is no such id, or if it claims more bytes than the file has. Bytes after the samples
/// are none of them.
platform::Result<std::span<const std::byte>, PlayCode> FindData(std::span<const std::byte> view) {
  for (std::size_t at = 0; at + kChunkHeaderBytes <= view.size(); at += kSearchStep) {
    // This is a search and no walk from chunk to chunk, so a chunk with a wrong length does no
    // harm. An id that does not begin at a multiple of four is not found.
    if (HasIdAt(view, at, "data")) {
      const std::uint32_t length = Number32At(view, at + 4);
      const auto rest = view.subspan(at + kChunkHeaderBytes);
      if (length > view.size()) {
        break;
      }
      return rest.first(std::min<std::size_t>(length, rest.size()));
    }
  }
  return platform::Failure(kSoundNoData);
}

platform::WaveFormat ReadFormat(std::span<const std::byte> view) {
  return {.formatTag = platform::kFormatTagPcm,
          .channels = Number16At(view, 22),
          .samplesPerSecond = Number32At(view, 24),
          // The sample rate once more, not the byte rate, deliberately: devices go by block align
          // and rate.
          .averageBytesPerSecond = Number32At(view, 24),
          .blockAlign = Number16At(view, 32),
          .bitsPerSample = Number16At(view, 34),
          .extraSize = 0};
}

/// A rate or a block of nothing would have no end.
bool IsPlayable(const platform::WaveFormat& format) {
  return format.channels > 0 && format.samplesPerSecond > 0 && format.blockAlign > 0;
}

/// How long to wait for the end: from the length of the file in bytes and the rate in samples, so
/// about twice the length of 16-bit mono sound, deliberately on the safe side.
std::uint32_t GetPlayingTime(std::size_t fileBytes, std::uint32_t samplesPerSecond) {
  const std::uint64_t time = fileBytes / samplesPerSecond * kMillisecondsInASecond + kExtraWait;
  return static_cast<std::uint32_t>(
      std::min<std::uint64_t>(time, std::numeric_limits<std::uint32_t>::max() - 1));
}

}  // namespace

int WaveDevice::Play(std::u16string_view path) {
  PlayCode code = kNoPlayBuffer;
  try {
    code = ReadSound(path);
    if (code == kPlayed) {
      code = PlaySound();
    }
  } catch (const std::exception&) {
    // Memory ran out, here or in a library.
    code = kNoPlayBuffer;
  }
  ReleaseOutput();
  return code;
}

PlayCode WaveDevice::ReadSound(std::u16string_view path) {
  const auto file =
      m_platform.files.Open(path, {platform::FileAccess::kRead, platform::FileShare::kNone,
                                   platform::FileCreation::kOpenExisting});
  if (!file) {
    return kSoundNotOpened;
  }
  const auto length = (*file)->GetLength();
  if (!length || *length > std::numeric_limits<std::uint32_t>::max()) {
    return kSoundNotMapped;
  }
  // The header first: a file that is no sound may be longer than the memory.
  if (!ReadUpTo(**file, std::min<std::uint64_t>(*length, kWaveHeaderBytes))) {
    return kSoundNotRead;
  }
  const PlayCode code = CheckHeader(m_view);
  if (code != kPlayed) {
    return code;
  }
  return ReadUpTo(**file, *length) ? kPlayed : kSoundNotRead;
}

bool WaveDevice::ReadUpTo(platform::File& file, std::uint64_t length) {
  const std::size_t there = m_view.size();
  try {
    m_view.resize(static_cast<std::size_t>(length));
  } catch (const std::bad_alloc&) {
    return false;
  }
  const auto rest = std::span(m_view).subspan(there);
  // Less than was asked for means that the file became shorter after its length was read.
  return file.Read(rest) == rest.size();
}

PlayCode WaveDevice::PlaySound() {
  const auto data = FindData(m_view);
  const platform::WaveFormat format = ReadFormat(m_view);
  if (!data || !IsPlayable(format)) {
    return kSoundNoData;
  }
  auto opened = m_platform.waveOut.Open(format);
  if (!opened) {
    return kOutputNotOpened;
  }
  m_waveOut = std::move(*opened);
  m_header = std::make_unique<platform::WaveHeader>();
  // The same address without const, which the record of wave devices has no place for.
  m_header->data = m_view.data() + (data->data() - m_view.data());
  m_header->bufferLength = static_cast<std::uint32_t>(data->size());
  if (m_waveOut->Prepare(*m_header) != WaveResult::kOk) {
    return kNotPrepared;
  }
  if (m_waveOut->Write(*m_header) != WaveResult::kOk) {
    return kNotWritten;
  }
  m_platform.clock.Sleep(GetPlayingTime(m_view.size(), format.samplesPerSecond));
  if (m_waveOut->Unprepare(*m_header) == WaveResult::kOk) {
    return kPlayed;
  }
  m_platform.clock.Sleep(kPlayerRetryWait);
  // Still playing after this: it is cut off.
  return m_waveOut->Unprepare(*m_header) == WaveResult::kOk ? kPlayed : kNotHeardToEnd;
}

void WaveDevice::ReleaseOutput() {
  if (m_waveOut) {
    // The device is given up whatever it answers.
    static_cast<void>(m_waveOut->Reset());
    static_cast<void>(m_waveOut->Close());
    m_waveOut.reset();
  }
  m_header.reset();
  m_view.clear();
  m_view.shrink_to_fit();
}

}  // namespace audio
