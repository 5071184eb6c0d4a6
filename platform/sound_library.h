#pragma once

#include <memory>

#include "platform/wave_in.h"
#include "platform/wave_out.h"

namespace platform {

// The doors of the library that knows the sound server: apart from the rest, since it brings thirty
// others with it, and loaded only for a microphone or a loudspeaker that is used and for which no
// file stands. Once it was used, it stays loaded for good.

using MakeWaveInFunction = void(std::unique_ptr<WaveIn>& made);
using MakeWaveOutFunction = void(std::unique_ptr<WaveOut>& made);

inline constexpr const char* kSoundLibrary = "voxtrel-pulse.so";
inline constexpr const char* kMakeWaveInName = "VoxtrelMakeWaveIn";
inline constexpr const char* kMakeWaveOutName = "VoxtrelMakeWaveOut";

}  // namespace platform
