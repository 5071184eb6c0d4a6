#include "backends/pulse/player.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <utility>

// The loudspeaker as a wave device. The whole sound is handed to the server as fast as it takes it,
// and the end is what the server reports when it has drained. What the loop's thread uses is
// touched under the loop's lock only.
namespace pulse {
namespace {

using platform::WaveHeader;
using platform::WaveResult;
using std::chrono::steady_clock;

constexpr StreamLabel kPlaybackLabel{"A recorded name", "audio-speakers"};

// What a sound may take longer than its length. Wireless loudspeakers need more than half of it.
constexpr std::chrono::milliseconds kServerDelay(500);

constexpr std::uint32_t kUnset = std::numeric_limits<std::uint32_t>::max();

// With this the server holds about two seconds of the sound. The library by itself would ask for a
// quarter of a second. A machine that is too busy to run this program for a while then leaves no
// gap in the sound.
constexpr pa_buffer_attr kServersChoice{kUnset, kUnset, kUnset, kUnset, kUnset};

constexpr std::size_t kNoRoom = std::numeric_limits<std::size_t>::max();

}  // namespace

Result<void> Player::Connect(std::unique_ptr<Connection> connection, Deadline deadline) {
  m_connection = std::move(connection);
  m_stream.emplace(*m_connection, [this] {
    m_isLost = true;
    End(false);
  });
  const auto connect = [this](pa_stream* stream) {
    pa_stream_set_write_callback(stream, OnWritable, this);
    return pa_stream_connect_playback(stream, nullptr, &kServersChoice, PA_STREAM_NOFLAGS, nullptr,
                                      nullptr);
  };
  return m_stream->Start(kPlaybackLabel, m_sampleSpec, connect, deadline);
}

WaveResult Player::Prepare(WaveHeader& header) {
  return m_stream ? m_queue.Prepare(header) : WaveResult::kNoDevice;
}

WaveResult Player::Write(WaveHeader& header) {
  if (!m_stream) return WaveResult::kNoDevice;
  const WaveResult result = m_queue.Add(header);
  if (result != WaveResult::kOk) return result;
  const std::span<const std::byte> bytes(header.data, header.bufferLength);
  const auto sound = bytes.first(bytes.size() - bytes.size() % pa_frame_size(&m_sampleSpec));
  // Computed before the sound goes out, so the real end comes no earlier than this.
  m_soundEnd = steady_clock::now() +
               std::chrono::microseconds(pa_bytes_to_usec(sound.size(), &m_sampleSpec));
  const LoopLock lock(m_connection->Loop());
  if (m_isLost) {
    m_queue.Drop();
    return WaveResult::kNoDevice;
  }
  Forget();
  m_end.emplace();
  m_rest = sound;
  if (sound.empty()) {
    End(true);
  } else {
    Feed();
  }
  return WaveResult::kOk;
}

WaveResult Player::Unprepare(WaveHeader& header) {
  if (!m_stream) return WaveResult::kNoDevice;
  if (m_queue.Holds(header)) {
    const std::optional<bool> isHeard = AwaitEnd();
    if (!isHeard) return WaveResult::kStillPlaying;
    if (!*isHeard) return WaveResult::kNoDevice;
  }
  m_queue.Release(header);
  return WaveResult::kOk;
}

WaveResult Player::Reset() {
  if (!m_stream) return WaveResult::kNoDevice;
  if (m_queue.Queued() == nullptr) return WaveResult::kOk;
  m_queue.Drop();
  const LoopLock lock(m_connection->Loop());
  Forget();
  if (m_isLost) return WaveResult::kOk;
  // Stops what the server holds. Nobody waits for its answer, so the operation is let go and not
  // cancelled.
  if (pa_operation* const flush = pa_stream_flush(m_stream->Get(), nullptr, nullptr)) {
    pa_operation_unref(flush);
  }
  return WaveResult::kOk;
}

WaveResult Player::Close() {
  Disconnect();
  m_queue.Drop();
  return WaveResult::kOk;
}

void Player::Disconnect() {
  if (!m_stream) return;
  {
    const LoopLock lock(m_connection->Loop());
    Forget();
  }
  m_stream.reset();
  m_connection.reset();
}

// Before the sound can have ended nobody waits. After that the server has a little time for its
// way, counted from the end of the sound: asking twice gives it no more.
std::optional<bool> Player::AwaitEnd() {
  const Deadline now = steady_clock::now();
  return m_end->WaitUntil(now < m_soundEnd ? now : m_soundEnd + kServerDelay);
}

/// Gives the server as much of the sound as it has room for, in whole samples of all channels.
/// After the last byte it asks the server to report when all has been played.
void Player::Feed() {
  pa_stream* const stream = m_stream->Get();
  const std::size_t frame = pa_frame_size(&m_sampleSpec);
  while (!m_rest.empty()) {
    const std::size_t room = pa_stream_writable_size(stream);
    if (room == kNoRoom) return End(false);
    const std::size_t count = std::min(room - room % frame, m_rest.size());
    if (count == 0) return;  // The server asks again when it has room.
    if (pa_stream_write(stream, m_rest.data(), count, nullptr, 0, PA_SEEK_RELATIVE) != 0) {
      return End(false);
    }
    m_rest = m_rest.subspan(count);
  }
  // The drain also makes the server play a sound that is shorter than what it likes to have in
  // hand.
  m_drain.reset(pa_stream_drain(stream, OnDrained, this));
  if (!m_drain) End(false);
}

void Player::End(bool isHeard) {
  m_rest = {};
  if (m_end) m_end->Give(isHeard);
}

void Player::Forget() {
  m_rest = {};
  m_drain.reset();
}

void Player::OnWritable(pa_stream* /*stream*/, std::size_t /*byteCount*/, void* self) {
  auto& me = *static_cast<Player*>(self);
  // The server asks for more also when the sound has ended.
  if (!me.m_rest.empty()) me.Feed();
}

void Player::OnDrained(pa_stream* /*stream*/, int success, void* self) {
  static_cast<Player*>(self)->End(success != 0);
}

}  // namespace pulse
