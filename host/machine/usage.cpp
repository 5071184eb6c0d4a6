#include "host/machine/usage.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <sstream>

#include "backends/text/printable.h"

namespace machine {

int ExplainUsage(const CLI::App& app, const CLI::ParseError& error) {
  constexpr int kWrongUsage = 2;
  std::ostringstream output;
  std::ostringstream errors;
  const int exitCode = app.exit(error, output, errors) == 0 ? 0 : kWrongUsage;
  static_cast<void>(std::fputs(text::Printable(output.str()).c_str(), stdout));
  static_cast<void>(std::fputs(text::Printable(errors.str()).c_str(), stderr));
  return exitCode;
}

}  // namespace machine
