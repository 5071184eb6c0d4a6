#pragma once

#include <memory>

#include "host/applet/presentation.h"

namespace applet {

/// Windows on the user's desktop; on a machine without one, a presentation that says so.
[[nodiscard]] std::unique_ptr<Presentation> MakeDesktopPresentation(platform::Clock& clock,
                                                                    platform::Threads& threads);

}  // namespace applet
