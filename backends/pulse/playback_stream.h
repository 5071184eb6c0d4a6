#pragma once

#include <pulse/sample.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include "backends/pulse/answer.h"
#include "backends/pulse/connection.h"
#include "backends/pulse/handles.h"
#include "backends/pulse/server_stream.h"

namespace pulse {

enum class Playback : std::uint8_t {
  kUnderWay,
  kHeard,  ///< To its end.
  kLost,   ///< The stream is no longer there.
};

/// A playback stream to the default sink, which plays one sound at a time. Does not outlive the
/// connection. Used by one thread.
class PlaybackStream {
 public:
  /// To the server's default sink, which the user may have chosen for this program alone. Null
  /// where the server gives no stream before the deadline.
  [[nodiscard]] static std::unique_ptr<PlaybackStream> Open(Connection& connection,
                                                            const pa_sample_spec& sampleSpec,
                                                            Deadline deadline);

  PlaybackStream(const PlaybackStream&) = delete;
  PlaybackStream& operator=(const PlaybackStream&) = delete;
  ~PlaybackStream();

  /// Starts to hand `sound`, whole frames, to the server. Its memory is read until it was heard or
  /// Stop was called. False where the stream is lost.
  [[nodiscard]] bool Play(std::span<const std::byte> sound);

  /// Waits until the sound was heard or the stream is lost, no longer than to the deadline.
  [[nodiscard]] Playback WaitForEnd(Deadline deadline);

  /// Stops at once and forgets the sound. Does not wait for the server.
  void Stop();

 private:
  explicit PlaybackStream(Connection& connection);

  // The rest needs the loop's lock or is on its thread.
  void Feed();
  void End(bool heard);

  static void OnWritable(pa_stream* stream, std::size_t byteCount, void* self);
  static void OnDrained(pa_stream* stream, int success, void* self);

  Connection& m_connection;
  std::span<const std::byte> m_rest;  ///< What the server has not taken yet.
  std::optional<Answer<bool>> m_end;  ///< Of the sound under way or the latest: whether heard.
  bool m_isLost = false;
  OperationHandle m_drain;  ///< From the last byte handed over on.
  ServerStream m_stream;
};

}  // namespace pulse
