#include "audio/wave_device.h"

#include <algorithm>
#include <exception>
#include <limits>
#include <new>
#include <span>
#include <string>
#include <utility>

#include "audio/wave_header.h"
#include "resources/strings.h"

namespace audio {

using platform::Failure;
using platform::FileError;
using platform::Result;
using platform::WaveHeader;
using platform::WaveResult;

// How a recording is made. The device gives no notice and is asked at most twice: the recorder
// sleeps for the length of the recording, and then takes what is in the buffer. The file has no
// name until the recording is whole, so a recording that fails leaves the earlier file.

namespace {

constexpr std::uint32_t kMillisecondsPerSecond = 1000;
constexpr std::uint32_t kUnprepareRetryWait = 100;
constexpr std::uint32_t kCloseRetryWait = 200;

/// The length that a recording has if the device reports none: three seconds, 66,150 bytes, less
/// the 44 bytes of a header. Some devices fill the buffer and forget to say so, and the buffer is
/// then kept as it is.
constexpr std::uint32_t kUnreportedBytes = 66106;

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
  // In 64 bits, since the product alone leaves 32 bits after 195 seconds of the usual format.
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

int WaveDevice::Record(std::u16string_view path, std::uint32_t milliseconds,
                       platform::Durability durability) {
  m_recordedBytes = 0;
  m_fileError.reset();
  try {
    return RecordTo(path, milliseconds, durability);
  } catch (const std::exception&) {
    // Memory ran out, here or in a library.
    m_file.reset();
    ReleaseInput();
    m_recordedBytes = 0;
    return kNoBuffer;
  }
}

RecordCode WaveDevice::RecordTo(std::u16string_view path, std::uint32_t milliseconds,
                                platform::Durability durability) {
  // Without any microphone the process ends, as it always has. Every other failure is a code.
  if (m_platform.waveIn.GetDeviceCount() == 0) {
    ShowTopmost(std::u16string(kNoDevices));
    m_platform.process.End(0);
    return kProcessEnded;
  }
  if (const auto opened = OpenFile(path); !opened) {
    return RefuseFile(path, opened.error());
  }
  // The device comes after the file, so no microphone is opened for a file that is refused.
  RecordCode code = StartInput(milliseconds);
  if (code == kRecorded && !AwaitRecording(milliseconds)) {
    code = kDeviceLost;
  }
  if (code != kRecorded) {
    m_file.reset();
    ReleaseInput();
    return code;
  }
  auto written = WriteRecording();
  if (written) {
    written = PublishFile(durability);
  }
  m_file.reset();
  ReleaseInput();
  // A recording cut short by a full disk must not pass for a good one.
  return written ? kRecorded : RefuseFile(path, written.error());
}

Result<void, FileError> WaveDevice::OpenFile(std::u16string_view path) {
  // A file of that name that is in use is refused before anybody speaks, and not when the recording
  // is to take its place.
  const auto earlier =
      m_platform.files.Open(path, {platform::FileAccess::kWrite, platform::FileShare::kNone,
                                   platform::FileCreation::kOpenExisting});
  if (!earlier && earlier.error() != FileError::kNotFound) {
    return Failure(earlier.error());
  }
  auto made = m_platform.files.OpenReplacement(path);
  if (!made) {
    return Failure(made.error());
  }
  m_file = std::move(*made);
  return {};
}

RecordCode WaveDevice::RefuseFile(std::u16string_view path, FileError error) {
  m_fileError = error;
  m_recordedBytes = 0;
  ShowTopmost(std::u16string(kNotCreatedBegin).append(path).append(kNotCreatedEnd));
  return kFileNotCreated;
}

RecordCode WaveDevice::StartInput(std::uint32_t milliseconds) {
  auto opened = m_platform.waveIn.Open(m_format);
  if (!opened) {
    return kDeviceNotOpened;
  }
  m_waveIn = std::move(*opened);
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

Result<void, FileError> WaveDevice::WriteRecording() {
  const std::uint32_t reported = m_header->bytesRecorded;
  // Never more than the buffer holds, whatever the device reports.
  const std::uint32_t bytes =
      std::min(reported == 0 ? kUnreportedBytes : reported, m_header->bufferLength);
  platform::File& file = m_file->GetFile();
  auto written = file.Write(MakeWaveHeader(m_format, bytes));
  if (written) {
    written = file.Write(std::span(m_header->data, bytes));
  }
  m_recordedBytes = bytes;
  return written;
}

Result<void, FileError> WaveDevice::PublishFile(platform::Durability durability) {
  // Another program may have the earlier file open for a moment, so there is a second try.
  if (const auto published = m_file->Publish(durability)) {
    return published;
  }
  m_platform.clock.Sleep(kCloseRetryWait);
  return m_file->Publish(durability);
}

void WaveDevice::ShowTopmost(std::u16string text) {
  m_platform.ui.ShowMessage({std::move(text), platform::MessageCaption::kText,
                             std::u16string(resources::kAppletName),
                             platform::MessageStyle::kTopmost});
}

}  // namespace audio
