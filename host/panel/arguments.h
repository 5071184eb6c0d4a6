#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace panel {

enum class Mode : std::uint8_t {
  kShow,     ///< The control panel's window.
  kOpen,     ///< One applet, in this process.
  kProbe,    ///< Nothing but to tell by the exit code whether there is a display.
  kInquire,  ///< Tell name and icon of a library's applets on standard output.
};

struct Arguments {
  Mode mode = Mode::kShow;
  std::vector<std::string> places;  ///< Applets and folders of applets; empty: the usual folders.
  std::string applet;               ///< Of kOpen and kInquire.
  int number = 0;                   ///< Which applet of the library is opened.
  bool isWatched = false;           ///< Sends signs of life on standard output.
};

/// The arguments, or the exit code where there is nothing more to do: the help or the version was
/// printed, or what is wrong.
[[nodiscard]] std::variant<Arguments, int> ParseArguments(int argc, const char* const* argv);

}  // namespace panel
