#include "backends/pulse/play_device.h"

#include <chrono>
#include <span>
#include <utility>

namespace pulse {
namespace {

using platform::WaveHeader;
using platform::WaveResult;
using std::chrono::steady_clock;

// What a sound may take longer than its length. Wireless loudspeakers need more than half of it.
constexpr std::chrono::milliseconds kServerDelay(500);

}  // namespace

PlayDevice::PlayDevice(std::unique_ptr<Connection> connection,
                       std::unique_ptr<PlaybackStream> stream, const pa_sample_spec& sampleSpec)
    : m_sampleSpec(sampleSpec), m_connection(std::move(connection)), m_stream(std::move(stream)) {}

WaveResult PlayDevice::Prepare(WaveHeader& header) {
  return IsOpen() ? m_queue.Prepare(header) : WaveResult::kNoDevice;
}

WaveResult PlayDevice::Write(WaveHeader& header) {
  if (!IsOpen()) return WaveResult::kNoDevice;
  const WaveResult result = m_queue.Add(header);
  if (result != WaveResult::kOk) return result;
  const std::span<const std::byte> bytes(header.data, header.bufferLength);
  const auto sound = bytes.first(bytes.size() - bytes.size() % pa_frame_size(&m_sampleSpec));
  m_soundEnd = steady_clock::now() +
               std::chrono::microseconds(pa_bytes_to_usec(sound.size(), &m_sampleSpec));
  if (m_stream->Play(sound)) return WaveResult::kOk;
  m_queue.Drop();
  return WaveResult::kNoDevice;
}

WaveResult PlayDevice::Unprepare(WaveHeader& header) {
  if (!IsOpen()) return WaveResult::kNoDevice;
  if (m_queue.Holds(header)) {
    const Playback playback = WaitForEnd();
    if (playback == Playback::kUnderWay) return WaveResult::kStillPlaying;
    if (playback == Playback::kLost) return WaveResult::kNoDevice;
  }
  m_queue.Release(header);
  return WaveResult::kOk;
}

WaveResult PlayDevice::Reset() {
  if (!IsOpen()) return WaveResult::kNoDevice;
  if (m_queue.Queued() != nullptr) {
    m_stream->Stop();
    m_queue.Drop();
  }
  return WaveResult::kOk;
}

WaveResult PlayDevice::Close() {
  m_stream.reset();
  m_connection.reset();
  m_queue.Drop();
  return WaveResult::kOk;
}

Playback PlayDevice::WaitForEnd() {
  const Deadline now = steady_clock::now();
  return m_stream->WaitForEnd(now < m_soundEnd ? now : m_soundEnd + kServerDelay);
}

}  // namespace pulse
