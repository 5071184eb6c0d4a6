#include "backends/pulse/recorder.h"

#include <algorithm>
#include <exception>
#include <limits>
#include <utility>

// The microphone as a wave device. The stream runs from Open on, so that the microphone is awake,
// and what it delivers is thrown away until Start. The loop's thread appends to m_bytes under the
// mutex; the caller's thread copies from there when it asks.
namespace pulse {
namespace {

using platform::WaveHeader;
using platform::WaveResult;

constexpr StreamLabel kRecordLabel{"Recording of a name", "audio-input-microphone"};

// Length of the pieces in which the server hands on what it records. It bounds how much of a
// recording can still be on its way when the recording time is over.
constexpr pa_usec_t kFragment = 20 * PA_USEC_PER_SEC / 1000;

// If a microphone is unplugged, the server would go on with another source, even with the monitor
// of a loudspeaker. Half of a name and then silence is no recording.
constexpr auto kFlags =
    static_cast<pa_stream_flags_t>(PA_STREAM_ADJUST_LATENCY | PA_STREAM_DONT_MOVE);

constexpr std::uint32_t kLengthOfServersChoice = std::numeric_limits<std::uint32_t>::max();

}  // namespace

Result<void> Recorder::Connect(std::unique_ptr<Connection> connection, const std::string& source,
                               const pa_sample_spec& sampleSpec, Deadline deadline) {
  m_connection = std::move(connection);
  m_stream.emplace(*m_connection, [this] { Lose(); });
  const auto connect = [&](pa_stream* stream) {
    pa_stream_set_read_callback(stream, OnReadable, this);
    pa_buffer_attr attributes{};
    attributes.maxlength = kLengthOfServersChoice;
    attributes.fragsize = static_cast<std::uint32_t>(pa_usec_to_bytes(kFragment, &sampleSpec));
    return pa_stream_connect_record(stream, source.empty() ? nullptr : source.c_str(), &attributes,
                                    kFlags);
  };
  return m_stream->Start(kRecordLabel, sampleSpec, connect, deadline);
}

void Recorder::AwaitSound(Deadline deadline) {
  // Whether sound came in time makes no difference to a recording that then starts: a silent source
  // gives silence.
  static_cast<void>(m_delivered.WaitUntil(deadline));
}

WaveResult Recorder::Prepare(WaveHeader& header) {
  return m_isOpen ? m_queue.Prepare(header) : WaveResult::kNoDevice;
}

WaveResult Recorder::AddBuffer(WaveHeader& header) {
  if (!m_isOpen) return WaveResult::kNoDevice;
  const WaveResult result = m_queue.Add(header);
  if (result != WaveResult::kOk) return result;
  Clear();
  const std::lock_guard lock(m_mutex);
  try {
    // All of it now, since the loop's thread could not report that there is no memory.
    m_bytes.reserve(header.bufferLength);
  } catch (const std::exception&) {
    m_queue.Drop();
    return WaveResult::kFailed;
  }
  m_capacity = header.bufferLength;
  return WaveResult::kOk;
}

WaveResult Recorder::Start() {
  if (!m_isOpen || IsLost()) return WaveResult::kNoDevice;
  if (m_queue.Queued() == nullptr) return WaveResult::kNotPrepared;
  const std::lock_guard lock(m_mutex);
  m_isStarted = true;
  return WaveResult::kOk;
}

// A device that went away while the buffer was not full gives no recording. If the buffer was full
// by then, it is whole, and the loss concerns nobody.
WaveResult Recorder::Unprepare(WaveHeader& header) {
  if (!m_isOpen) return WaveResult::kNoDevice;
  if (m_queue.Holds(header)) {
    // Asked before the bytes are copied: what came last before the loss is then among them.
    const bool isLost = IsLost();
    CopyTo(header);
    if (header.bytesRecorded < header.bufferLength) {
      return isLost ? WaveResult::kNoDevice : WaveResult::kStillPlaying;
    }
    Clear();
  }
  m_queue.Release(header);
  return WaveResult::kOk;
}

WaveResult Recorder::Reset() {
  if (!m_isOpen) return WaveResult::kNoDevice;
  if (WaveHeader* const header = m_queue.Queued()) {
    CopyTo(*header);
    m_queue.Drop();
    Clear();
  }
  return WaveResult::kOk;
}

WaveResult Recorder::Close() {
  m_isOpen = false;
  // The stream goes before its connection, and both before the bytes that the loop's thread writes.
  m_stream.reset();
  m_connection.reset();
  m_queue.Drop();
  Clear();
  return WaveResult::kOk;
}

void Recorder::Take(std::span<const std::byte> bytes) {
  const std::lock_guard lock(m_mutex);
  // What comes before Start and after the buffer is full is heard and thrown away.
  const auto kept = bytes.first(Room(bytes.size()));
  m_bytes.insert(m_bytes.end(), kept.begin(), kept.end());
}

void Recorder::TakeSilence(std::size_t count) {
  const std::lock_guard lock(m_mutex);
  m_bytes.insert(m_bytes.end(), Room(count), std::byte{0});
}

void Recorder::Lose() {
  {
    const std::lock_guard lock(m_mutex);
    m_isLost = true;
  }
  m_delivered.Give(false);
}

std::size_t Recorder::Room(std::size_t count) const {
  return m_isStarted ? std::min(count, m_capacity - m_bytes.size()) : 0;
}

bool Recorder::IsLost() const {
  const std::lock_guard lock(m_mutex);
  return m_isLost;
}

void Recorder::CopyTo(WaveHeader& header) const {
  const std::lock_guard lock(m_mutex);
  const auto count = std::min<std::size_t>(m_bytes.size(), header.bufferLength);
  std::copy_n(m_bytes.begin(), count, header.data);
  header.bytesRecorded = static_cast<std::uint32_t>(count);
}

void Recorder::Clear() {
  const std::lock_guard lock(m_mutex);
  m_isStarted = false;
  m_capacity = 0;
  m_bytes = {};
}

void Recorder::OnReadable(pa_stream* stream, std::size_t /*byteCount*/, void* self) {
  auto& me = *static_cast<Recorder*>(self);
  const void* data = nullptr;
  std::size_t count = 0;
  while (pa_stream_peek(stream, &data, &count) == 0 && count > 0) {
    if (data != nullptr) {
      me.Take({static_cast<const std::byte*>(data), count});
    } else {
      // A hole that the server could not fill; its time has passed all the same.
      me.TakeSilence(count);
    }
    pa_stream_drop(stream);
    me.m_delivered.Give(true);
  }
}

}  // namespace pulse
