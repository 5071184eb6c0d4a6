#pragma once

namespace pulse {

/// Sends messages of the sound library to the system log and never to the program's own output,
/// unless the user asked for them by PULSE_LOG. Changes the environment, so it is first called
/// before the program has a second thread; from then on it changes nothing.
void KeepLibraryQuiet();

}  // namespace pulse
