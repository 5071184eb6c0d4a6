#pragma once

#include <memory>

#include "backends/pulse/capture_buffer.h"
#include "backends/pulse/connection.h"
#include "backends/pulse/record_stream.h"
#include "platform/wave_in.h"
#include "platform/wave_queue.h"

namespace pulse {

/// An input device over a running record stream. What the stream delivers is dropped until Start.
/// No call but AddBuffer, which takes memory, does more than a copy or a disconnection: none waits
/// for the server.
class RecordDevice final : public platform::WaveInDevice {
 public:
  RecordDevice(std::unique_ptr<Connection> connection, std::unique_ptr<CaptureBuffer> buffer,
               std::unique_ptr<RecordStream> stream);

  [[nodiscard]] platform::WaveResult Prepare(platform::WaveHeader& header) override;
  [[nodiscard]] platform::WaveResult AddBuffer(platform::WaveHeader& header) override;
  [[nodiscard]] platform::WaveResult Start() override;
  [[nodiscard]] platform::WaveResult Unprepare(platform::WaveHeader& header) override;
  [[nodiscard]] platform::WaveResult Reset() override;
  [[nodiscard]] platform::WaveResult Close() override;

 private:
  [[nodiscard]] bool IsOpen() const { return m_stream != nullptr; }
  void Fetch(platform::WaveHeader& header) const;

  platform::WaveQueue m_queue;
  // In this order, since the stream uses the other two until it is gone.
  std::unique_ptr<CaptureBuffer> m_buffer;
  std::unique_ptr<Connection> m_connection;
  std::unique_ptr<RecordStream> m_stream;
};

}  // namespace pulse
