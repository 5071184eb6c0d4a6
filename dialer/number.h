#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/result.h"

namespace dialer {

/// Why a stored text is no number that may be dialled.
enum class NumberFault : std::uint8_t {
  kNoDigits,        ///< There is nothing to dial in it.
  kWrongCharacter,  ///< It holds a letter, a control character, a digit of another script, or a
                    ///< sign that does not belong into a number.
  kPlusWithin,      ///< A "+" stands after the first digit.
  kLonePause,       ///< A pause is not between two digits.
  kExtension,       ///< What follows ";" is no ";ext=" with digits, or there are two.
  kTooLong,         ///< It has more than kMostDialled characters to dial.
};

/// A stored text that is not dialled.
struct Refusal {
  NumberFault fault = NumberFault::kNoDigits;
  /// The text as a person may see it: what a terminal might take for a command, and what nobody
  /// would see, is written as its code, such as "<U+000D>". A long text is cut.
  std::u16string shown;
};

/// The most characters to dial, with extension. Every modem takes as many in one line.
inline constexpr std::size_t kMostDialled = 64;

/// A telephone number that may be dialled: digits, "*", "#", a "+" at the beginning, pauses between
/// them, and an extension. Only MakeNumber makes one, so nothing else can ever be sent to a modem
/// or be handed to another program.
class Number {
 public:
  /// Returns the stored text as a person reads it. It holds nothing that was refused.
  [[nodiscard]] const std::u16string& GetText() const { return m_text; }

  /// Returns the URI of RFC 3966, such as "tel:+12025550101;ext=42". A "#" is written "%23", since
  /// it would begin a fragment (RFC 3986). Every pause is a comma: RFC 3966 knows none, and some
  /// programs take the "w" of RFC 2806 for the key with that letter.
  [[nodiscard]] std::string ToUri() const;

  /// Returns what stands between "ATD" and ";" for a modem (ITU-T V.250): digits, "*", "#", "+",
  /// "," for a pause and "W" for the wait for another dial tone. The extension follows after one
  /// pause.
  [[nodiscard]] std::string ToDialString() const;

  friend bool operator==(const Number& a, const Number& b) {
    return a.m_dialled == b.m_dialled && a.m_extension == b.m_extension;
  }

 private:
  friend platform::Result<Number, Refusal> MakeNumber(std::u16string_view stored);
  Number(std::u16string_view text, std::string dialled, std::string extension);

  std::u16string m_text;
  std::string m_dialled;    ///< Of "0123456789+*#,w".
  std::string m_extension;  ///< Of digits; empty if there is none.
};

/// Returns the number that a stored text means. Blanks, dots, dashes and brackets separate and are
/// left out. Nothing else is ever left out to make a text fit: it is refused.
///
/// Pauses are as telephones store them: "," and "p" for one, "w" for a wait, in either letter case.
[[nodiscard]] platform::Result<Number, Refusal> MakeNumber(std::u16string_view stored);

/// Returns why the text is not dialled, in words of the user's language: a part of a sentence,
/// which begins with a small letter and has no full stop.
[[nodiscard]] std::string Explain(const Refusal& refusal);

}  // namespace dialer
