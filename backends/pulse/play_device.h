#pragma once

#include <pulse/sample.h>

#include <memory>

#include "backends/pulse/answer.h"
#include "backends/pulse/connection.h"
#include "backends/pulse/playback_stream.h"
#include "platform/wave_out.h"
#include "platform/wave_queue.h"

namespace pulse {

/// An output device over a playback stream. Unprepare alone may wait, half a second for each sound
/// in all: its caller reckons with the length of the sound, and the way through a sound server
/// takes a little longer than that.
class PlayDevice final : public platform::WaveOutDevice {
 public:
  PlayDevice(std::unique_ptr<Connection> connection, std::unique_ptr<PlaybackStream> stream,
             const pa_sample_spec& sampleSpec);

  [[nodiscard]] platform::WaveResult Prepare(platform::WaveHeader& header) override;
  [[nodiscard]] platform::WaveResult Write(platform::WaveHeader& header) override;
  [[nodiscard]] platform::WaveResult Unprepare(platform::WaveHeader& header) override;
  [[nodiscard]] platform::WaveResult Reset() override;
  [[nodiscard]] platform::WaveResult Close() override;

 private:
  [[nodiscard]] bool IsOpen() const { return m_stream != nullptr; }
  [[nodiscard]] Playback WaitForEnd();

  const pa_sample_spec m_sampleSpec;
  platform::WaveQueue m_queue;
  Deadline m_soundEnd;  ///< Of the queued sound, by its length.
  // In this order, since the stream uses the connection until it is gone.
  std::unique_ptr<Connection> m_connection;
  std::unique_ptr<PlaybackStream> m_stream;
};

}  // namespace pulse
