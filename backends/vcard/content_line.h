#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vcard {

// Escapes keep a text apart from what is written around it. The functions below refuse nothing:
// what is no escape stands for itself.

/// Returns what quoted-printable stands for. Its soft line breaks are gone before this, when lines
/// are put together.
[[nodiscard]] std::string DecodeQuotedPrintable(std::string_view text);

/// Returns the text of a URI.
[[nodiscard]] std::string DecodePercents(std::string_view text);

/// Returns the bytes that base64 stands for. Blanks within it are passed over. Returns nothing if
/// it is not base64.
[[nodiscard]] std::optional<std::string> DecodeBase64(std::string_view text);

enum class Commas : std::uint8_t {
  kKept,
  /// A comma becomes a blank if it has neither a backslash before it nor a blank after it: it
  /// stands between two names.
  kBlanks,
};

/// Returns the components of a value between its semicolons, each without its backslashes.
[[nodiscard]] std::vector<std::string> SplitValue(std::string_view value,
                                                  Commas commas = Commas::kKept);

/// The beginning of a content line, before its parameters and its value.
struct Property {
  std::string_view group;  ///< Empty if the line belongs to none.
  std::string_view name;   ///< Empty if the line has no value.
};

[[nodiscard]] Property PropertyOf(std::string_view line);

/// One content line of a vCard, as far as contacts need it.
struct ContentLine {
  std::string group;  ///< In ASCII capitals, as the next two.
  std::string name;
  std::vector<std::string> words;  ///< Of all its types (see AppendWords), "PREF" among them.
  std::string label;               ///< In the user's own words, of "X-CUSTOM(...)".
  int preference = 0;              ///< What "PREF=" says, 1 to 100; 0 if it says nothing.
  bool isUri = false;              ///< The line says that its value is one.
  std::size_t number = 0;          ///< Of its first line in the stream, from 1; 0 if not known.
  /// The value cut at its semicolons, without escapes and encodings, in UTF-8 unless its bytes are
  /// of no known character set. Never empty.
  std::vector<std::string> components;
  /// Of a name alone: the same, with a blank for each comma between two names. Empty if no comma is
  /// among them.
  std::vector<std::string> spacedComponents;
  /// The components as former versions read them, which knew neither base64 nor ISO-2022-JP. Empty
  /// if they read the same.
  std::vector<std::string> formerComponents;
};

/// The lines of one vCard between its BEGIN and END.
using Card = std::vector<ContentLine>;

/// Reads one unfolded line of vCard 2.1, 3.0 or 4.0. Returns nothing if the line has no value.
[[nodiscard]] std::optional<ContentLine> ParseContentLine(std::string_view line);

}  // namespace vcard
