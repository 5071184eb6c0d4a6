#pragma once

#include <string>
#include <variant>

namespace connection {

/// Returns the folder of the voice tags and settings. Returns an exit code if nothing remains to
/// do, because this has printed the help, the version, or what is wrong.
[[nodiscard]] std::variant<std::string, int> ParseArguments(int argc, const char* const* argv);

}  // namespace connection
