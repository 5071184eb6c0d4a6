#include <gtest/gtest.h>
#include <unicode/uchar.h>

#include <string>

#include "tags/phone_kind.h"

namespace tags {
namespace {

TEST(PhoneTypeWord, TakesForWhiteSpaceWhatUnicodeDoes) {
  for (char32_t c = 1; c < 0x10000; ++c) {
    if (c >= 0xD800 && c <= 0xDFFF) {
      continue;
    }
    const std::u16string item = {u'5', static_cast<char16_t>(c), u'w'};
    const bool isWhiteSpace = u_isUWhiteSpace(static_cast<UChar32>(c)) != 0;
    ASSERT_EQ(PhoneTypeWord(item) == u"w", isWhiteSpace) << std::hex << static_cast<unsigned>(c);
  }
}

}  // namespace
}  // namespace tags
