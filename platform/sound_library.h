#pragma once

#include <memory>

#include "platform/wave_in.h"
#include "platform/wave_out.h"

namespace platform {

// The doors of the library that knows the sound server: apart from the rest, since it brings thirty
// others with it, and loaded only where no file stands for the microphone or the loudspeaker. Once
// it was used, it stays loaded for good.

using MakeWaveInFunction = void(std::unique_ptr<WaveIn>& made);
using MakeWaveOutFunction = void(std::unique_ptr<WaveOut>& made);

inline constexpr const char* kSoundLibrary = "voxtrel-pulse.so";
inline constexpr const char* kMakeWaveInName = "VoxtrelMakeWaveIn";
inline constexpr const char* kMakeWaveOutName = "VoxtrelMakeWaveOut";

}  // namespace platform
