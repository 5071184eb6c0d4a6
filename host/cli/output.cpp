#include "host/cli/output.h"

#include <fmt/format.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace cli {

Json NineDigits(float value) {
  if (!std::isfinite(value)) {
    return nullptr;
  }
  // The double next to a nine-digit decimal prints as that decimal again.
  return std::strtod(fmt::format("{:.9g}", value).c_str(), nullptr);
}

void PrintJson(const Json& json) { PrintLine(json.dump()); }

void PrintLine(std::string_view line) { fmt::print("{}\n", line); }

void PrintErrorLine(std::string_view line) { fmt::print(stderr, "{}\n", line); }

}  // namespace cli
