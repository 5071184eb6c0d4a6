#pragma once

#include "platform/wave_format.h"

namespace platform {

/// The queue of a wave device, which has room for one header: the rules of preparing, queueing and
/// releasing that are the same for every device. Owns nothing. Used by one thread at a time.
class WaveQueue {
 public:
  [[nodiscard]] WaveResult Prepare(WaveHeader& header) const {
    if (Holds(header)) return WaveResult::kStillPlaying;
    if (header.data == nullptr || header.bufferLength == 0) return WaveResult::kFailed;
    header.flags |= kWaveHeaderPrepared;
    return WaveResult::kOk;
  }

  [[nodiscard]] WaveResult Add(WaveHeader& header) {
    if ((header.flags & kWaveHeaderPrepared) == 0) return WaveResult::kNotPrepared;
    if (m_queued != nullptr) return WaveResult::kStillPlaying;
    header.bytesRecorded = 0;
    m_queued = &header;
    return WaveResult::kOk;
  }

  [[nodiscard]] bool Holds(const WaveHeader& header) const { return m_queued == &header; }

  /// Returns the queued header. Returns null if there is none.
  [[nodiscard]] WaveHeader* Queued() const { return m_queued; }

  /// Ends the use of `header`, queued or not: it is no longer prepared.
  void Release(WaveHeader& header) {
    header.flags &= ~kWaveHeaderPrepared;
    if (Holds(header)) m_queued = nullptr;
  }

  /// Forgets the queued header and leaves it as it is.
  void Drop() { m_queued = nullptr; }

 private:
  WaveHeader* m_queued = nullptr;
};

}  // namespace platform
