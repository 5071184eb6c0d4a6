#include "host/cli/output.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <string>

namespace cli {
namespace {

/// The library prints a fraction with as many digits as tell the double, up to 17.
std::string NumberText(double value) {
  if (!std::isfinite(value)) {
    return "null";
  }
  std::string number = fmt::format("{:.9g}", value);
  if (number.find_first_of(".e") == std::string::npos) {
    number += ".0";
  }
  return number;
}

void AppendJson(std::string& text, const Json& json) {
  if (json.is_number_float()) {
    text += NumberText(json.get<double>());
    return;
  }
  if (!json.is_structured()) {
    text += json.dump();
    return;
  }
  text += json.is_object() ? '{' : '[';
  const char* separator = "";
  for (const auto& item : json.items()) {
    text += separator;
    if (json.is_object()) {
      text += Json(item.key()).dump() + ':';
    }
    AppendJson(text, item.value());
    separator = ",";
  }
  text += json.is_object() ? '}' : ']';
}

void Write(std::FILE* stream, std::string_view line) {
  const std::string text = std::string(line) + '\n';
  static_cast<void>(std::fwrite(text.data(), 1, text.size(), stream));
}

}  // namespace

void ReserveStandardStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(stream, F_GETFD) == -1) {
      // Takes the lowest free number, this one. Opened the wrong way round, so that its use fails.
      static_cast<void>(::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY));
    }
  }
}

void PrintJson(const Json& json) {
  std::string text;
  AppendJson(text, json);
  PrintLine(text);
}

void PrintLine(std::string_view line) { Write(stdout, line); }

void PrintErrorLine(std::string_view line) { Write(stderr, line); }

bool FlushOutput() { return std::fflush(stdout) == 0 && std::ferror(stdout) == 0; }

}  // namespace cli
