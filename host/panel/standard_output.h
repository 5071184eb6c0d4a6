#pragma once

namespace panel {

/// Keeps the panel's own line to the process that started this one: what the applet's library
/// prints on standard output goes to standard error from now on. The descriptor is that of the old
/// standard output, or -1.
[[nodiscard]] int TakeStandardOutput();

/// False where not all was taken; nobody listening is no reason to end.
[[nodiscard]] bool WriteAll(int descriptor, const char* bytes, long long count);

}  // namespace panel
