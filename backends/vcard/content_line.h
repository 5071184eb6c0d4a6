#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "backends/vcard/telephone_kinds.h"

namespace vcard {

/// The names of lines that mean something here.
enum class LineName : std::uint8_t {
  kBegin,
  kEnd,
  kAgent,
  kOther,
  // The lines that a contact is made of.
  kName,
  kFullName,
  kNickname,
  kEmail,
  kCompany,
  kTelephone,
  kOutlookTelephone,
  kLabel,
  kUid,
};

/// The beginning of a content line, before its parameters and its value.
struct Property {
  std::string_view group;  ///< Empty if the line belongs to none.
  LineName name = LineName::kOther;
};

[[nodiscard]] Property PropertyOf(std::string_view line);

/// One content line of a vCard, as far as contacts need it.
struct ContentLine {
  std::string group;  ///< In ASCII capitals.
  LineName name = LineName::kOther;
  Words words = 0;         ///< Of all its types. PREF is one.
  std::string label;       ///< In the user's own words, of "X-CUSTOM(...)".
  int preference = 0;      ///< What "PREF=" says, 1 to 100; 0 if it says nothing.
  bool isUri = false;      ///< The line says that its value is one.
  std::size_t number = 0;  ///< Of its first line in the stream, from 1; 0 if not known.
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
using Card = std::span<const ContentLine>;

/// Reads one unfolded line of vCard 2.1, 3.0 or 4.0, which has a colon and begins with `property`.
/// Makes `parsed` that line. Its memory is used again, as a stream has very many lines.
void ParseContentLine(std::string_view line, const Property& property, ContentLine& parsed);

}  // namespace vcard
