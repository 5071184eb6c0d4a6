#pragma once

#include <chrono>
#include <string>

#include "backends/desktop/programs.h"

namespace desktop {

/// Opens `url` in the user's browser. Returns whether one took it. Tries in this order:
/// 1. the desktop's default for sites, else for pages, started by its own command. xdg-open loses
///    the place within a page of the disk on some desktops, and so does GIO for some browsers;
/// 2. xdg-open;
/// 3. each command of $BROWSER.
///
/// Each may take `patience`. May be called from any thread.
[[nodiscard]] bool OpenInBrowser(const Environment& environment, const std::string& url,
                                 std::chrono::milliseconds patience);

/// Returns the command that opens `url`, by the rules for quotes and field codes of the Exec key of
/// a desktop file. The URL is one argument whatever it holds. It comes last if the key has no place
/// for it. Returns no words if the key breaks the rules.
[[nodiscard]] Command MakeCommand(const std::string& exec, const std::string& url);

}  // namespace desktop
