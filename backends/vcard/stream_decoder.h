#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace vcard {

/// Makes UTF-8 of a stream that is UTF-16, and hands on any other as it is. UTF-16 is known by its
/// byte-order mark, or by a zero next to the first character.
class StreamDecoder {
 public:
  using Sink = std::function<void(std::string_view bytes)>;

  explicit StreamDecoder(Sink sink) : m_sink(std::move(sink)) {}

  /// The stream may be cut anywhere between two calls.
  void Feed(std::string_view bytes);

  /// To be called once, at the end of the stream.
  void Finish();

 private:
  enum class Encoding : std::uint8_t { kUnknown, kBytes, kLittleEndian, kBigEndian };

  void FeedUtf16(std::string_view bytes);

  Sink m_sink;
  Encoding m_encoding = Encoding::kUnknown;
  std::string m_start;         ///< Bytes that do not tell the encoding yet.
  std::optional<char> m_half;  ///< The first byte of a unit whose second is to come.
  std::u16string m_units;      ///< A surrogate whose second one is to come.
};

}  // namespace vcard
