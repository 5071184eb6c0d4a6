#pragma once

#include <string>

namespace panel {

/// The whole work of the process that asks one library for its applets: loads it, asks, and writes
/// the report on standard output. The exit code.
[[nodiscard]] int RunInquiry(const std::string& applet);

}  // namespace panel
