#include "backends/pulse/record_device.h"

#include <utility>

namespace pulse {

using platform::WaveHeader;
using platform::WaveResult;

RecordDevice::RecordDevice(std::unique_ptr<Connection> connection,
                           std::unique_ptr<CaptureBuffer> buffer,
                           std::unique_ptr<RecordStream> stream)
    : m_buffer(std::move(buffer)),
      m_connection(std::move(connection)),
      m_stream(std::move(stream)) {}

WaveResult RecordDevice::Prepare(WaveHeader& header) {
  return IsOpen() ? m_queue.Prepare(header) : WaveResult::kNoDevice;
}

WaveResult RecordDevice::AddBuffer(WaveHeader& header) {
  if (!IsOpen()) return WaveResult::kNoDevice;
  const WaveResult result = m_queue.Add(header);
  if (result != WaveResult::kOk) return result;
  if (m_buffer->Prepare(header.bufferLength)) return WaveResult::kOk;
  m_queue.Drop();
  return WaveResult::kFailed;
}

WaveResult RecordDevice::Start() {
  if (!IsOpen() || m_buffer->IsLost()) return WaveResult::kNoDevice;
  if (m_queue.Queued() == nullptr) return WaveResult::kNotPrepared;
  m_buffer->Start();
  return WaveResult::kOk;
}

WaveResult RecordDevice::Unprepare(WaveHeader& header) {
  if (!IsOpen()) return WaveResult::kNoDevice;
  if (m_queue.Holds(header)) {
    // Asked for before the bytes are fetched: what came last before the loss is then among them.
    const bool lost = m_buffer->IsLost();
    Fetch(header);
    if (header.bytesRecorded < header.bufferLength) {
      return lost ? WaveResult::kNoDevice : WaveResult::kStillPlaying;
    }
    m_buffer->Clear();
  }
  m_queue.Release(header);
  return WaveResult::kOk;
}

WaveResult RecordDevice::Reset() {
  if (!IsOpen()) return WaveResult::kNoDevice;
  if (WaveHeader* const header = m_queue.Queued()) {
    Fetch(*header);
    m_queue.Drop();
    m_buffer->Clear();
  }
  return WaveResult::kOk;
}

WaveResult RecordDevice::Close() {
  m_stream.reset();
  m_connection.reset();
  m_buffer->Clear();
  m_queue.Drop();
  return WaveResult::kOk;
}

void RecordDevice::Fetch(WaveHeader& header) const {
  header.bytesRecorded = m_buffer->CopyTo({header.data, header.bufferLength});
}

}  // namespace pulse
