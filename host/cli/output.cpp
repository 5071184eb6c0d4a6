#include "host/cli/output.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <cmath>
#include <cstddef>
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

unsigned char ByteAt(std::string_view text, std::size_t index) {
  return static_cast<unsigned char>(text[index]);
}

/// Whether one of the control characters U+0080 to U+009F begins there.
bool IsHighControl(std::string_view utf8, std::size_t index) {
  constexpr unsigned char kLead = 0xC2;
  constexpr unsigned char kLast = 0x9F;
  return index + 1 < utf8.size() && ByteAt(utf8, index) == kLead &&
         (ByteAt(utf8, index + 1) & 0xC0) == 0x80 && ByteAt(utf8, index + 1) <= kLast;
}

/// Paths of the host need not be UTF-8; what is not becomes U+FFFD, since a JSON text has no bytes.
/// The control characters that the library leaves as they are become escapes.
std::string Dump(const Json& json) {
  std::string text = json.dump(-1, ' ', false, Json::error_handler_t::replace);
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (IsHighControl(text, i)) {
      text.replace(i, 2, fmt::format("\\u{:04x}", ByteAt(text, i + 1)));
    }
  }
  return text;
}

void AppendJson(std::string& text, const Json& json) {
  if (json.is_number_float()) {
    text += NumberText(json.get<double>());
    return;
  }
  if (!json.is_structured()) {
    text += Dump(json);
    return;
  }
  text += json.is_object() ? '{' : '[';
  const char* separator = "";
  for (const auto& item : json.items()) {
    text += separator;
    if (json.is_object()) {
      text += Dump(Json(item.key())) + ':';
    }
    AppendJson(text, item.value());
    separator = ",";
  }
  text += json.is_object() ? '}' : ']';
}

/// A terminal must not take a name for a command: control characters become blanks, but for tabs
/// and the ends of lines. JSON writes them as escapes and so has none but those above U+007F.
std::string Printable(std::string_view line) {
  constexpr unsigned char kDelete = 0x7F;
  std::string text(line);
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isLow = ByteAt(text, i) < ' ' || ByteAt(text, i) == kDelete;
    if (isLow && text[i] != '\n' && text[i] != '\t') {
      text[i] = ' ';
    } else if (IsHighControl(text, i)) {
      text.replace(i, 2, " ");
    }
  }
  return text;
}

void Write(std::FILE* stream, std::string_view line) {
  const std::string text = Printable(line) + '\n';
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
