#pragma once

#include <memory>

#include "platform/vcard/desktop_source.h"
#include "platform/wave_in.h"
#include "platform/wave_out.h"

namespace applet {

// What of this machine is in libraries of its own beside this one, and takes so much memory that
// each is loaded only where it is wanted.

[[nodiscard]] vcard::DesktopSource::Library LoadDesktopBooks();

/// The sound server's; without the library there is no device, and standard error tells why.
[[nodiscard]] std::unique_ptr<platform::WaveIn> LoadWaveIn();
[[nodiscard]] std::unique_ptr<platform::WaveOut> LoadWaveOut();

}  // namespace applet
