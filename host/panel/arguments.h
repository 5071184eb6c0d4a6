#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace panel {

enum class Mode : std::uint8_t {
  kShow,     ///< The control panel's window.
  kOpen,     ///< One applet, in this process.
  kProbe,    ///< Nothing: the exit code says whether there is a display.
  kInquire,  ///< Reports a library's applets on standard output.
};

struct Arguments {
  Mode mode = Mode::kShow;
  std::vector<std::string>
      places;              ///< Applets and folders of applets; empty for the installed ones.
  std::string applet;      ///< Of kOpen and kInquire.
  std::string remark;      ///< Of kOpen: stands in the titles of the windows, after their own.
  int number = 0;          ///< Which applet of the library is opened.
  bool isWatched = false;  ///< Sends signs of life on standard output.
};

/// Returns the arguments. Returns an exit code if nothing remains to do, because this has printed
/// the help, the version, or what is wrong.
[[nodiscard]] std::variant<Arguments, int> ParseArguments(int argc, const char* const* argv);

}  // namespace panel
