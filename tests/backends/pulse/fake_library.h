#pragma once

#include <string>

/// A stand-in for the sound server's library, linked in its place: a server with one microphone and
/// one loudspeaker that answers within each call. It hears silence and plays whatever it is given.
namespace fake_library {

/// No failures, nothing counted.
void Reset();

/// Lets the n-th call from now on, from 1, that makes something fail as without memory. The
/// library never returns without a property list: it ends the process instead.
void FailAt(int number);

/// The function that failed since Reset; empty if none did.
[[nodiscard]] std::string GetFailed();

/// Things that were made and not given back, and locks that are held.
[[nodiscard]] int CountHeld();

/// Called before and after the server hands over what it knows of itself and its microphones.
void SetAroundAnswers(void (*begin)(), void (*end)());

}  // namespace fake_library
