// Character sets by iconv, digests by nettle.

#include <iconv.h>
#include <nettle/sha2.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "backends/vcard/charset.h"
#include "backends/vcard/contact_keys.h"

namespace vcard {
namespace {

/// One converter of the system to UTF-8.
class Converter {
 public:
  explicit Converter(const std::string& charset)
      : m_handle(::iconv_open("UTF-8", charset.c_str())) {}
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;
  ~Converter() {
    if (IsOpen()) {
      ::iconv_close(m_handle);
    }
  }

  [[nodiscard]] bool IsOpen() const { return m_handle != reinterpret_cast<iconv_t>(kFailed); }

  /// Each text is converted by itself.
  [[nodiscard]] std::optional<Converted> Convert(std::string text) {
    ::iconv(m_handle, nullptr, nullptr, nullptr, nullptr);
    // No character of these sets takes more bytes than this for each of its own, and none is kept
    // back for longer than the rest.
    constexpr std::size_t kMostBytesOfOne = 4;
    constexpr std::size_t kRest = 16;
    Converted converted{std::string(text.size() * kMostBytesOfOne + kRest, '\0')};
    char* from = text.data();
    std::size_t left = text.size();
    char* to = converted.text.data();
    std::size_t room = converted.text.size();
    while (::iconv(m_handle, &from, &left, &to, &room) == kFailed) {
      const bool isBadByte = errno == EILSEQ || errno == EINVAL;
      if (!isBadByte || left == 0 || room < kReplacement.size()) {
        return std::nullopt;
      }
      converted.isWhole = false;
      to = std::copy(kReplacement.begin(), kReplacement.end(), to);
      room -= kReplacement.size();
      ++from;
      --left;
    }
    if (::iconv(m_handle, nullptr, nullptr, &to, &room) == kFailed) {
      return std::nullopt;
    }
    converted.text.resize(converted.text.size() - room);
    return converted;
  }

 private:
  static constexpr auto kFailed = static_cast<std::size_t>(-1);
  static constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  // U+FFFD.

  iconv_t m_handle;
};

}  // namespace

// To open a converter takes ten times as long as to convert a name, and a file is written in one
// set. So each thread keeps the last one.
std::optional<Converted> ConvertBySystem(const std::string& charset, std::string text) {
  thread_local std::string openCharset;
  thread_local std::optional<Converter> converter;
  if (!converter || openCharset != charset) {
    converter.emplace(charset);
    openCharset = charset;
  }
  return converter->IsOpen() ? converter->Convert(std::move(text)) : std::nullopt;
}

Digest ComputeDigest(std::string_view text) {
  sha256_ctx state{};
  ::sha256_init(&state);
  ::sha256_update(&state, text.size(), reinterpret_cast<const std::uint8_t*>(text.data()));
  Digest digest{};
  ::sha256_digest(&state, digest.size(), reinterpret_cast<std::uint8_t*>(digest.data()));
  return digest;
}

}  // namespace vcard
