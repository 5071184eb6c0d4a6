#pragma once

#include <string_view>

// What is done to a program of Windows whose calls of the system are made to fail. Environment
// variables choose it, as in plan.h:
//
//   VOXTREL_FAULT_LOG   file that gets a line for every counted call: its name, whether it changes
//                       something, and the errors that it can have
//   VOXTREL_FAULT_TIME  seconds that have passed on the program's clocks when it begins
//   VOXTREL_FAULT       ACTION:N[:ERROR], with the actions kill, tear, once and ever; and
//                       keep:N, wave devices give no header back from their N-th call on;
//                       lose:N, the microphone is gone after N milliseconds of a recording
//
// The program's clocks stand still but for what it sleeps. A killed program has kExitOfKilled.
namespace faults {

inline constexpr int kExitOfKilled = 99;

/// From now on the calls that this program imports are counted and fail as planned.
void TakeCalls();

/// From now on none of them fails.
void LeaveCalls();

/// Puts the registry of the root folder into the state that the file `state` in that folder holds,
/// and deletes the file.
void LoadRegistry();

/// Writes that file.
void SaveRegistry();

}  // namespace faults
