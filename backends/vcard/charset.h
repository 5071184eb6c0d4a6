#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vcard {

// The keywords of vCards are ASCII and compared without regard to case, in every language.

[[nodiscard]] constexpr char ToUpper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

[[nodiscard]] inline std::string ToUpper(std::string_view text) {
  std::string upper(text);
  std::transform(upper.begin(), upper.end(), upper.begin(), [](char c) { return ToUpper(c); });
  return upper;
}

[[nodiscard]] constexpr bool EqualIgnoringCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return ToUpper(x) == ToUpper(y);
         });
}

[[nodiscard]] inline bool ContainsIgnoringCase(std::string_view text, std::string_view part) {
  return std::search(text.begin(), text.end(), part.begin(), part.end(),
                     [](char x, char y) { return ToUpper(x) == ToUpper(y); }) != text.end();
}

[[nodiscard]] constexpr bool IsAlphanumeric(char c) {
  return (c >= '0' && c <= '9') || (ToUpper(c) >= 'A' && ToUpper(c) <= 'Z');
}

[[nodiscard]] constexpr bool IsControl(char c) { return (c >= '\0' && c < ' ') || c == '\x7F'; }

[[nodiscard]] constexpr bool IsBlank(char c) { return c == ' ' || c == '\t'; }

[[nodiscard]] constexpr std::string_view Trim(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) {
    text.remove_prefix(1);
  }
  while (!text.empty() && IsBlank(text.back())) {
    text.remove_suffix(1);
  }
  return text;
}

struct Converted {
  std::string text;     ///< UTF-8. What is nothing in the set is U+FFFD.
  bool isWhole = true;  ///< Every byte was something in the set.
};

/// Returns `text`, whose bytes are in the set `charset`, in UTF-8. Returns nothing if this system
/// does not know the set. Each system has one source file with this and with ComputeDigest, and the
/// build chooses it.
[[nodiscard]] std::optional<Converted> ConvertBySystem(const std::string& charset,
                                                       std::string text);

/// A text in UTF-8.
struct DecodedText {
  std::string text;
  bool isAsBefore = true;  ///< FormerUtf8 gives the same.
};

/// Returns a text whose bytes are in the set `charset`, with U+FFFD for each byte that means
/// nothing in it. The name counts for nothing if there is such a byte and either the set is UTF-8
/// or ASCII, or the text is UTF-8 as it stands. It counts for nothing either if address books do
/// not write that set: a file must not choose which of the hundreds of modules of the system's
/// converter is loaded.
///
/// A text without a name that counts stays as it stands if some character beyond ASCII is UTF-8,
/// even if single bytes are not. Otherwise it is read in the set of the old western Windows
/// programs, which did not name theirs.
[[nodiscard]] DecodedText DecodeText(std::string_view text, std::string_view charset = {});

/// Returns what former versions made of the text. They did not know ISO-2022-JP, and gave up a set
/// at the first byte that means nothing in it.
[[nodiscard]] std::string FormerUtf8(std::string_view text, std::string_view charset);

/// Returns whether bytes of the set mean something else after an escape sequence.
[[nodiscard]] bool IsStateful(std::string_view charset);

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

/// Makes `components` those of a value between its semicolons, each without its backslashes. Their
/// memory is used again.
void SplitValue(std::string_view value, Commas commas, std::vector<std::string>& components);

/// Makes UTF-8 of a stream that is UTF-16, and hands on any other as it is. UTF-16 is known by its
/// byte-order mark, or by a zero next to the first character.
class StreamDecoder {
 public:
  using Sink = std::function<void(std::string_view bytes)>;

  explicit StreamDecoder(Sink sink) : m_sink(std::move(sink)) {}

  /// The stream may be cut anywhere between two calls.
  void Feed(std::string_view bytes);

  /// Call this once, at the end of the stream.
  void Finish();

 private:
  enum class Encoding : std::uint8_t { kUnknown, kBytes, kLittleEndian, kBigEndian };

  void FeedUtf16(std::string_view bytes);

  Sink m_sink;
  Encoding m_encoding = Encoding::kUnknown;
  std::string m_start;         ///< Bytes that do not show the encoding yet.
  std::optional<char> m_half;  ///< The first byte of a unit, if the second is to come.
  std::u16string m_units;      ///< The first surrogate of a pair, if the second is to come.
};

}  // namespace vcard
