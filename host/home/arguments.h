#pragma once

#include <cstdint>
#include <variant>

#include "host/machine/backends.h"

namespace home {

struct Arguments {
  machine::Options machine;  ///< From the environment, unless an option says something else.
  bool isProbe = false;      ///< Show nothing: the exit code says whether there is a display.
  bool teaches = false;      ///< Open the page that teaches a name at once.
  bool dials = false;        ///< The same with the page that hears a name and calls.
};

/// Returns the arguments, with `options` unless an option says something else. Returns an exit code
/// if nothing remains to do, because this has printed the help, the version, or what is wrong.
[[nodiscard]] std::variant<Arguments, int> ParseArguments(machine::Options options, int argc,
                                                          const char* const* argv);

}  // namespace home
