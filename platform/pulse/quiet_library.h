#pragma once

namespace pulse {

/// Sends messages of the sound library to the system log and never to the program's own output,
/// unless the user asked for them by PULSE_LOG. Changes the environment, so it is called before the
/// program has a second thread.
void KeepLibraryQuiet();

}  // namespace pulse
