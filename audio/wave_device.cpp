#include "audio/wave_device.h"

#include <algorithm>
#include <exception>
#include <limits>
#include <new>
#include <span>
#include <string>
#include <utility>

#include "audio/wave_header.h"

namespace audio {

using platform::FileError;
using platform::WaveHeader;
using platform::WaveResult;

namespace {

constexpr std::uint32_t kMillisecondsPerSecond = 1000;
constexpr std::uint32_t kUnprepareRetryWait = 100;
constexpr std::uint32_t kCloseRetryWait = 200;

/// Length taken for a recording of which the device reports nothing: three seconds, 66,150 bytes,
/// less the 44 bytes of a header. Some devices fill the buffer and forget to say so; the buffer is
/// then kept as it is rather than thrown away.
constexpr std::uint32_t kUnreportedBytes = 66106;

constexpr std::u16string_view kCaption = u"Zedra Voxtrel";
// Both texts stand as they always have, slips included: users and support know them so, and they
// are no part of the language file.
constexpr std::u16string_view kNoDevices = u"There are no wave-record devices in you computer.";
constexpr std::u16string_view kNotCreatedBegin = u"File :";
constexpr std::u16string_view kNotCreatedEnd = u" couldn't be creat";

}  // namespace

WaveDevice::WaveDevice(const platform::Platform& platform) : m_platform(platform) {}

WaveDevice::~WaveDevice() { ReleaseInput(); }

void WaveDevice::SetFormat(std::uint16_t bits, std::uint32_t samplesPerSecond) {
  m_format = MonoPcm(bits, samplesPerSecond);
}

WaveHeader* WaveDevice::AllocBuffer(std::uint32_t milliseconds) {
  m_header.reset();
  m_samples.reset();
  const std::uint64_t bytes =
      std::uint64_t{m_format.averageBytesPerSecond} * milliseconds / kMillisecondsPerSecond;
  if (bytes > std::numeric_limits<std::uint32_t>::max()) {
    return nullptr;
  }
  m_samples.reset(new (std::nothrow) std::byte[static_cast<std::size_t>(bytes)]());
  if (!m_samples) {
    return nullptr;
  }
  m_header = std::make_unique<WaveHeader>();
  m_header->data = m_samples.get();
  m_header->bufferLength = static_cast<std::uint32_t>(bytes);
  return m_header.get();
}

int WaveDevice::QueueBuffer(WaveHeader& header) {
  if (!m_waveIn || m_waveIn->Prepare(header) != WaveResult::kOk) {
    return 1;
  }
  header.flags = platform::kWaveHeaderPrepared;
  return m_waveIn->AddBuffer(header) == WaveResult::kOk ? 0 : 1;
}

int WaveDevice::Record(std::u16string_view path, std::uint32_t milliseconds) {
  m_recordedBytes = 0;
  try {
    return RecordTo(path, milliseconds);
  } catch (const std::exception&) {
    // Memory ran out, here or in a library.
    m_file.reset();
    ReleaseInput();
    return kNoBuffer;
  }
}

RecordCode WaveDevice::RecordTo(std::u16string_view path, std::uint32_t milliseconds) {
  if (m_platform.waveIn.GetDeviceCount() == 0) {
    ShowTopmost(std::u16string(kNoDevices));
    m_platform.process.End(0);
    return kProcessEnded;
  }
  m_file = m_platform.files
               .Open(path, {platform::FileAccess::kWrite, platform::FileShare::kNone,
                            platform::FileCreation::kCreateAlways})
               .file;
  if (!m_file) {
    ShowTopmost(std::u16string(kNotCreatedBegin).append(path).append(kNotCreatedEnd));
    return kFileNotCreated;
  }
  const RecordCode started = StartInput(milliseconds);
  if (started != kRecorded) {
    static_cast<void>(CloseFile());  // Nothing was written that could be lost.
    ReleaseInput();
    return started;
  }

  if (!AwaitRecording(milliseconds)) {
    static_cast<void>(CloseFile());
    ReleaseInput();
    static_cast<void>(m_platform.files.Delete(path));
    return kDeviceLost;
  }
  const bool written = WriteRecording();
  const bool closed = CloseFile();
  ReleaseInput();
  if (!written || !closed) {
    // A recording cut short by a full disk must not pass for a good one.
    static_cast<void>(m_platform.files.Delete(path));
    m_recordedBytes = 0;
    ShowTopmost(std::u16string(kNotCreatedBegin).append(path).append(kNotCreatedEnd));
    return kFileNotCreated;
  }
  return kRecorded;
}

RecordCode WaveDevice::StartInput(std::uint32_t milliseconds) {
  m_waveIn = m_platform.waveIn.Open(m_format).device;
  if (!m_waveIn) {
    return kDeviceNotOpened;
  }
  WaveHeader* header = AllocBuffer(milliseconds);
  if (header == nullptr) {
    return kNoBuffer;
  }
  if (QueueBuffer(*header) != 0) {
    return kBufferNotQueued;
  }
  return m_waveIn->Start() == WaveResult::kOk ? kRecorded : kNotStarted;
}

bool WaveDevice::AwaitRecording(std::uint32_t milliseconds) {
  m_platform.clock.Sleep(milliseconds);
  WaveResult result = m_waveIn->Unprepare(*m_header);
  if (result != WaveResult::kOk) {
    m_platform.clock.Sleep(kUnprepareRetryWait);
    // Still not full after this: what has arrived by now is the recording.
    result = m_waveIn->Unprepare(*m_header);
  }
  return result != WaveResult::kNoDevice;
}

void WaveDevice::ReleaseInput() {
  if (m_waveIn) {
    // The device is given up whatever it answers.
    static_cast<void>(m_waveIn->Reset());
    static_cast<void>(m_waveIn->Close());
    m_waveIn.reset();
  }
  m_header.reset();
  m_samples.reset();
}

bool WaveDevice::WriteRecording() {
  const std::uint32_t reported = m_header->bytesRecorded;
  const std::uint32_t bytes =
      std::min(reported == 0 ? kUnreportedBytes : reported, m_header->bufferLength);
  const auto header = MakeWaveHeader(m_format, bytes);
  if (m_file->Write(header) != FileError::kNone ||
      m_file->Write(std::span(m_header->data, bytes)) != FileError::kNone ||
      m_file->Flush() != FileError::kNone) {
    return false;
  }
  m_recordedBytes = bytes;
  return true;
}

bool WaveDevice::CloseFile() {
  bool closed = m_file->Close() == FileError::kNone;
  if (!closed) {
    m_platform.clock.Sleep(kCloseRetryWait);
    closed = m_file->Close() == FileError::kNone;
  }
  m_file.reset();
  return closed;
}

void WaveDevice::ShowTopmost(std::u16string text) {
  m_platform.ui.ShowMessage({std::move(text), platform::MessageCaption::kText,
                             std::u16string(kCaption), platform::MessageStyle::kTopmost});
}

}  // namespace audio
