#pragma once

#include "backends/win32/windows.h"
#include "platform/wave_devices.h"

// After the header above, without which it does not compile.
#include <mmsystem.h>

namespace win32 {

/// Returns the format as the system takes it. The average of bytes per second is what the other
/// fields make it.
[[nodiscard]] inline WAVEFORMATEX ToSystem(const platform::WaveFormat& format) {
  return {format.formatTag,
          format.channels,
          format.samplesPerSecond,
          format.samplesPerSecond * format.blockAlign,
          format.blockAlign,
          format.bitsPerSample,
          0};
}

[[nodiscard]] inline platform::WaveResult ToResult(MMRESULT result) {
  switch (result) {
    case MMSYSERR_NOERROR:
      return platform::WaveResult::kOk;
    case MMSYSERR_BADDEVICEID:
    case MMSYSERR_NODRIVER:
    case MMSYSERR_NOTENABLED:
      return platform::WaveResult::kNoDevice;
    case WAVERR_BADFORMAT:
      return platform::WaveResult::kBadFormat;
    default:
      return platform::WaveResult::kFailed;
  }
}

}  // namespace win32
