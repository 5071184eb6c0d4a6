#pragma once

#include <chrono>
#include <string>

#include "backends/desktop/environment.h"

namespace xdg {

/// Opens `url` in the user's browser: the default one of the desktop, started directly, since
/// xdg-open loses the place within a page of the disk on some desktops; else by xdg-open; else by
/// the commands of $BROWSER. False where none of them took it within `patience` each.
[[nodiscard]] bool OpenInBrowser(const Environment& environment, const std::string& url,
                                 std::chrono::milliseconds patience);

}  // namespace xdg
