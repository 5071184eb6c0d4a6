#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace vcard {

/// Returns `text` in UTF-8, with U+FFFD for each byte that means nothing in the set. Returns
/// nothing if there is such a byte and either the set is UTF-8 or ASCII, or the text is UTF-8 as it
/// stands, so that the name of the set is wrong. Returns nothing either if the set is none of those
/// that address books write. Other names are not handed to the system's converter: a file must not
/// choose which of its hundreds of modules is loaded.
[[nodiscard]] std::optional<std::string> ToUtf8(std::string_view text, std::string_view charset);

/// Returns the UTF-8 of a text that names no character set. The text stays as it stands if some
/// character beyond ASCII is UTF-8, even if single bytes are not. Otherwise it is read in the set
/// of the old western Windows programs, which did not name theirs.
[[nodiscard]] std::string GuessUtf8(std::string_view text);

/// Returns what former versions made of the text. They did not know ISO-2022-JP, and gave up a set
/// at the first byte that means nothing in it.
[[nodiscard]] std::string FormerUtf8(std::string_view text, std::string_view charset);

/// Returns whether bytes of the set mean something else after an escape sequence.
[[nodiscard]] bool IsStateful(std::string_view charset);

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
