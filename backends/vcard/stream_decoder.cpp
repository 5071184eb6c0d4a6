#include "backends/vcard/stream_decoder.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "backends/text/utf.h"

namespace vcard {
namespace {

constexpr std::size_t kUnitSize = 2;

bool IsFirstSurrogate(char16_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }

}  // namespace

void StreamDecoder::Feed(std::string_view bytes) {
  if (m_encoding == Encoding::kUnknown) {
    const std::size_t taken = std::min(kUnitSize - m_start.size(), bytes.size());
    m_start.append(bytes.substr(0, taken));
    bytes.remove_prefix(taken);
    if (m_start.size() < kUnitSize) {
      return;
    }
    const bool isLittle = m_start == "\xFF\xFE" || (m_start[0] != 0 && m_start[1] == 0);
    const bool isBig = m_start == "\xFE\xFF" || (m_start[0] == 0 && m_start[1] != 0);
    m_encoding = isLittle ? Encoding::kLittleEndian
                 : isBig  ? Encoding::kBigEndian
                          : Encoding::kBytes;
    Feed(std::exchange(m_start, {}));
  }
  if (m_encoding == Encoding::kBytes) {
    m_sink(bytes);
  } else {
    FeedUtf16(bytes);
  }
}

void StreamDecoder::FeedUtf16(std::string_view bytes) {
  for (const char byte : bytes) {
    if (!m_half) {
      m_half = byte;
      continue;
    }
    const bool isLittle = m_encoding == Encoding::kLittleEndian;
    const auto low = static_cast<unsigned char>(isLittle ? *m_half : byte);
    const auto high = static_cast<unsigned char>(isLittle ? byte : *m_half);
    m_units.push_back(static_cast<char16_t>(high << 8 | low));
    m_half.reset();
  }
  std::u16string rest;
  if (!m_units.empty() && IsFirstSurrogate(m_units.back())) {
    rest = m_units.back();
    m_units.pop_back();
  }
  m_sink(text::ToUtf8(std::exchange(m_units, std::move(rest))));
}

void StreamDecoder::Finish() {
  if (m_encoding == Encoding::kUnknown) {
    m_sink(m_start);
  } else if (m_encoding != Encoding::kBytes && (m_half || !m_units.empty())) {
    m_sink("\xEF\xBF\xBD");  // U+FFFD: the stream was cut within a character.
  }
}

}  // namespace vcard
