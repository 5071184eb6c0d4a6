#include "backends/pulse/playback_stream.h"

#include <algorithm>
#include <limits>

namespace pulse {
namespace {

constexpr StreamLabel kPlaybackLabel{"A recorded name", "audio-speakers"};

constexpr std::uint32_t kUnset = std::numeric_limits<std::uint32_t>::max();

// About two seconds in the server's hands, where the library by itself would ask for a quarter of
// one. A machine that is too busy to run this program for a while then leaves no gap in the sound.
constexpr pa_buffer_attr kServersChoice{kUnset, kUnset, kUnset, kUnset, kUnset};

constexpr std::size_t kNoRoom = std::numeric_limits<std::size_t>::max();

}  // namespace

PlaybackStream::PlaybackStream(Connection& connection)
    : m_connection(connection), m_stream(connection, [this] {
        m_isLost = true;
        End(false);
      }) {}

std::unique_ptr<PlaybackStream> PlaybackStream::Open(Connection& connection,
                                                     const pa_sample_spec& sampleSpec,
                                                     Deadline deadline) {
  std::unique_ptr<PlaybackStream> me(new PlaybackStream(connection));
  const auto connect = [&](pa_stream* stream) {
    pa_stream_set_write_callback(stream, OnWritable, me.get());
    return pa_stream_connect_playback(stream, nullptr, &kServersChoice, PA_STREAM_NOFLAGS, nullptr,
                                      nullptr);
  };
  if (!me->m_stream.Start(kPlaybackLabel, sampleSpec, connect, deadline)) return nullptr;
  return me;
}

PlaybackStream::~PlaybackStream() {
  const LoopLock lock(m_connection.Loop());
  m_rest = {};
  m_drain.reset();
}

bool PlaybackStream::Play(std::span<const std::byte> sound) {
  const LoopLock lock(m_connection.Loop());
  if (m_isLost) return false;
  m_drain.reset();
  m_end.emplace();
  m_rest = sound;
  if (sound.empty()) {
    End(true);
  } else {
    Feed();
  }
  return true;
}

Playback PlaybackStream::WaitForEnd(Deadline deadline) {
  const auto heard = m_end ? m_end->WaitUntil(deadline) : std::nullopt;
  if (!heard) return Playback::kUnderWay;
  return *heard ? Playback::kHeard : Playback::kLost;
}

void PlaybackStream::Stop() {
  const LoopLock lock(m_connection.Loop());
  m_rest = {};
  m_drain.reset();
  if (m_isLost) return;
  // What the server holds; the answer is of no interest, so the operation is let go, not cancelled.
  if (pa_operation* const flush = pa_stream_flush(m_stream.Get(), nullptr, nullptr)) {
    pa_operation_unref(flush);
  }
}

void PlaybackStream::Feed() {
  pa_stream* const stream = m_stream.Get();
  const std::size_t frame = pa_frame_size(pa_stream_get_sample_spec(stream));
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
  // Also what makes the server play a sound that is shorter than what it likes to have in hand.
  m_drain.reset(pa_stream_drain(stream, OnDrained, this));
  if (!m_drain) End(false);
}

void PlaybackStream::End(bool heard) {
  m_rest = {};
  if (m_end) m_end->Give(heard);
}

void PlaybackStream::OnWritable(pa_stream* /*stream*/, std::size_t /*byteCount*/, void* self) {
  auto& me = *static_cast<PlaybackStream*>(self);
  if (!me.m_rest.empty()) me.Feed();
}

void PlaybackStream::OnDrained(pa_stream* /*stream*/, int success, void* self) {
  static_cast<PlaybackStream*>(self)->End(success != 0);
}

}  // namespace pulse
