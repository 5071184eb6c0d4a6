#pragma once

#include <string>

#include "host/panel/arguments.h"

namespace panel {

// A library may crash, hang or end its process. So the panel loads none: it starts itself again for
// each, as one of these processes. Both functions are the whole work of such a process and return
// its exit code.

/// Asks one library for its applets: loads it, asks, and writes the report on standard output.
[[nodiscard]] int RunInquiry(const std::string& applet);

/// Opens one applet: loads its library, and holds a control panel's conversation with it. What the
/// user must know goes to standard error, each line after the name of the library's file. Needs the
/// QApplication.
[[nodiscard]] int RunOpener(const Arguments& arguments);

}  // namespace panel
