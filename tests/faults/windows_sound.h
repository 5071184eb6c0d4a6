#pragma once

#include <span>

#include "tests/faults/windows_plan.h"

// A microphone and a loudspeaker in the place of those of the machine. They work on the program's
// clock, and so without a thread of their own. VOXTREL_FAULT_MICROPHONE names a wave file: that is
// what the microphone hears, from the beginning of each recording on. VOXTREL_FAULT_LOUDSPEAKER
// names the file that gets the bytes that were heard.
//
// They watch their user. A program that frees memory of a header which it has prepared and not yet
// unprepared is ended with kExitOfFreed, as a real device would write there.
namespace faults {

inline constexpr int kExitOfFreed = 98;

/// The calls of wave devices.
[[nodiscard]] std::span<const Import> SoundCalls();

/// So much time has passed.
void LetDevicesWork(DWORD milliseconds);

}  // namespace faults
