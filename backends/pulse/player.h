#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include "backends/pulse/connection.h"
#include "platform/wave_devices.h"

namespace pulse {

/// An output device: a playback stream of the sound server, which plays one sound at a time.
///
/// The loop's thread hands the sound to the server as soon as the server has room, and then asks
/// the server to play it out (a drain). The answer to that is the end of the sound. Only Unprepare
/// may wait, half a second in all for each sound: its caller allows for the length of the sound,
/// and the way through a sound server takes a little longer.
class Player final : public platform::WaveOutDevice {
 public:
  explicit Player(const pa_sample_spec& sampleSpec) : m_sampleSpec(sampleSpec) {}
  ~Player() override { Disconnect(); }

  /// Plays to the server's default sink, which the user may have chosen for this program alone.
  /// After a failure this can only be destroyed.
  [[nodiscard]] Result<void> Connect(std::unique_ptr<Connection> connection, Deadline deadline);

  [[nodiscard]] platform::WaveResult Prepare(platform::WaveHeader& header) override;
  [[nodiscard]] platform::WaveResult Write(platform::WaveHeader& header) override;
  [[nodiscard]] platform::WaveResult Unprepare(platform::WaveHeader& header) override;
  [[nodiscard]] platform::WaveResult Reset() override;
  [[nodiscard]] platform::WaveResult Close() override;

 private:
  void Disconnect();
  /// Waits for the end of the queued sound if its length is over. Returns whether it was heard, and
  /// nothing while it is under way.
  [[nodiscard]] std::optional<bool> AwaitEnd();

  // These need the loop's lock or are on its thread.
  void Feed();
  void End(bool isHeard);
  /// Forgets the sound, of which the server asks for no more.
  void Forget();

  static void OnWritable(pa_stream* stream, std::size_t byteCount, void* self);
  static void OnDrained(pa_stream* stream, int success, void* self);

  const pa_sample_spec m_sampleSpec;
  platform::WaveQueue m_queue;
  Deadline m_soundEnd;  ///< Of the queued sound, by its length.

  std::span<const std::byte> m_rest;  ///< What the server has not taken yet.
  std::optional<Answer> m_end;        ///< Of the sound under way or the latest: whether heard.
  bool m_isLost = false;
  // In this order, since the stream uses all of the above until it is gone.
  std::unique_ptr<Connection> m_connection;
  OperationHandle m_drain;  ///< From the last byte handed over on.
  std::optional<Stream> m_stream;
};

}  // namespace pulse
