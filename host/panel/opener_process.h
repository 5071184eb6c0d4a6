#pragma once

#include <string>

#include "host/panel/arguments.h"

namespace panel {

/// The whole work of a process that opens one applet: loads it, and holds a control panel's
/// conversation with it. What the user must know goes to standard error, each line after the name
/// of the library's file. Needs the QApplication. The exit code.
[[nodiscard]] int RunOpener(const Arguments& arguments);

}  // namespace panel
