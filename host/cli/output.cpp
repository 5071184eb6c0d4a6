#include "host/cli/output.h"

#include <fmt/format.h>

#include <cmath>
#include <cstddef>
#include <cstdio>
#include <string>

#include "backends/text/printable.h"
#include "backends/text/utf.h"

// All that the command line prints goes through here. Names of contacts and files come from
// anywhere, so each line is made safe for a terminal. The numbers of the JSON are written here,
// since the library gives floats the digits of a double.
namespace cli {
namespace {

/// Returns nine digits. The library prints as many as a double needs, up to 17, but the values are
/// floats.
std::string NumberText(double value) {
  // JSON has no word for it. A level of a silent recording is not a number.
  if (!std::isfinite(value)) {
    return "null";
  }
  std::string number = fmt::format("{:.9g}", value);
  // A whole number keeps its point, so that readers of JSON see a float each time.
  if (number.find_first_of(".e") == std::string::npos) {
    number += ".0";
  }
  return number;
}

/// Returns the library's text of a value. Paths of the host need not be UTF-8: what is not becomes
/// U+FFFD, since a JSON text has no bytes. What the library leaves as it is, and a terminal might
/// take for a command, becomes an escape.
std::string Dump(const Json& json) {
  const std::string dumped = json.dump(-1, ' ', false, Json::error_handler_t::replace);
  std::u16string text;
  for (const char16_t unit : text::FromUtf8(dumped)) {
    if (text::IsCommand(unit)) {
      text += text::FromUtf8(fmt::format("\\u{:04x}", static_cast<unsigned>(unit)));
    } else {
      text += unit;
    }
  }
  return text::ToUtf8(text);
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

void Write(std::FILE* stream, std::string_view line) {
  const std::string text = text::Printable(line) + '\n';
  static_cast<void>(std::fwrite(text.data(), 1, text.size(), stream));
}

}  // namespace

void PrintJson(const Json& json) {
  std::string text;
  AppendJson(text, json);
  PrintLine(text);
}

Json ErrorToJson(int code, std::string_view message) {
  return {{"error", {{"code", code}, {"message", message}}}};
}

void PrintLine(std::string_view line) { Write(stdout, line); }

void PrintErrorLine(std::string_view line) { Write(stderr, line); }

/// A full disk or a closed pipe may show only here: what was printed waits in memory until then.
bool FlushOutput() { return std::fflush(stdout) == 0 && std::ferror(stdout) == 0; }

}  // namespace cli
