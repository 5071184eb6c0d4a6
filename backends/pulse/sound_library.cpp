#include "platform/sound_library.h"

#include <type_traits>

#include "backends/pulse/pulse_sound.h"

// The functions that the library exports.
extern "C" __attribute__((visibility("default"))) void VoxtrelMakeWaveIn(
    std::unique_ptr<platform::WaveIn>& made);
extern "C" __attribute__((visibility("default"))) void VoxtrelMakeWaveOut(
    std::unique_ptr<platform::WaveOut>& made);

static_assert(std::is_same_v<decltype(VoxtrelMakeWaveIn), platform::MakeWaveInFunction>);
static_assert(std::is_same_v<decltype(VoxtrelMakeWaveOut), platform::MakeWaveOutFunction>);

void VoxtrelMakeWaveIn(std::unique_ptr<platform::WaveIn>& made) {
  made = std::make_unique<pulse::PulseWaveIn>();
}

void VoxtrelMakeWaveOut(std::unique_ptr<platform::WaveOut>& made) {
  made = std::make_unique<pulse::PulseWaveOut>();
}
