#include "backends/text/utf.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using text::FromHostName;
using text::FromUtf8;
using text::ToHostName;
using text::ToUtf8;

const std::u16string kOne(1, char16_t{0xFFFD});
const std::u16string kTwo(2, char16_t{0xFFFD});
const std::u16string kThree(3, char16_t{0xFFFD});
const std::u16string kFour(4, char16_t{0xFFFD});

TEST(Utf, ACharacterBeyondAsciiIsFoundAtAnyPlaceOfAText) {
  for (std::size_t at = 0; at < 20; ++at) {
    std::u16string text(20, u'a');
    text[at] = u'\u00E4';
    const std::string utf8 = text::ToUtf8(text);
    EXPECT_EQ(utf8, std::string(at, 'a') + "\xC3\xA4" + std::string(19 - at, 'a'));
    EXPECT_EQ(text::FromUtf8(utf8), text);
    EXPECT_FALSE(text::IsAscii(utf8));
    EXPECT_TRUE(text::IsAscii(utf8.substr(0, at)));
  }
}

TEST(Utf, EveryCharacterComesBack) {
  for (char32_t character = 0; character <= 0x10FFFF; ++character) {
    if (character >= 0xD800 && character <= 0xDFFF) {
      continue;
    }
    std::u16string text;
    if (character < 0x10000) {
      text = {static_cast<char16_t>(character)};
    } else {
      text = {static_cast<char16_t>(0xD7C0 + (character >> 10)),
              static_cast<char16_t>(0xDC00 + (character & 0x3FF))};
    }
    ASSERT_EQ(FromUtf8(ToUtf8(text)), text) << static_cast<unsigned>(character);
    ASSERT_EQ(FromHostName(ToHostName(text)), text) << static_cast<unsigned>(character);
  }
}

TEST(Utf, CharactersHaveTheirShortestForm) {
  EXPECT_EQ(ToUtf8(u"aé€\U0001F600"), "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
  EXPECT_EQ(FromUtf8("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"), u"aé€\U0001F600");
}

TEST(Utf, ZeroCharactersAreKept) {
  EXPECT_EQ(ToUtf8(std::u16string_view(u"a\0b", 3)), std::string("a\0b", 3));
  EXPECT_EQ(FromUtf8(std::string_view("a\0b", 3)), std::u16string(u"a\0b", 3));
}

TEST(Utf, AnUnpairedSurrogateBecomesTheReplacementCharacter) {
  EXPECT_EQ(ToUtf8(std::u16string{char16_t{0xD800}}), "\xEF\xBF\xBD");
  EXPECT_EQ(ToUtf8(std::u16string{char16_t{0xDC00}, u'a'}),
            "\xEF\xBF\xBD"
            "a");
  EXPECT_EQ(ToUtf8(std::u16string{char16_t{0xD800}, u'a'}),
            "\xEF\xBF\xBD"
            "a");
  EXPECT_EQ(ToUtf8(std::u16string{char16_t{0xD800}, char16_t{0xD83D}, char16_t{0xDE00}}),
            "\xEF\xBF\xBD\xF0\x9F\x98\x80");
}

TEST(Utf, EachByteOfABrokenSequenceIsReplaced) {
  EXPECT_EQ(FromUtf8("\x80"), kOne);
  EXPECT_EQ(FromUtf8("\xC3"), kOne);
  EXPECT_EQ(FromUtf8("\xE2\x82"), kTwo);
  EXPECT_EQ(FromUtf8("\xE2\x82"
                     "a"),
            kTwo + u"a");
  EXPECT_EQ(FromUtf8("\xE2\xC3\xA9"), kOne + u"é");
  EXPECT_EQ(FromUtf8("\xFF\xFE"), kTwo);
}

TEST(Utf, OverlongSurrogateAndTooLargeFormsAreBroken) {
  EXPECT_EQ(FromUtf8("\xC0\xAF"), kTwo);
  EXPECT_EQ(FromUtf8("\xC1\xBF"), kTwo);
  EXPECT_EQ(FromUtf8("\xE0\x80\xAF"), kThree);
  EXPECT_EQ(FromUtf8("\xED\xA0\x80"), kThree);
  EXPECT_EQ(FromUtf8("\xF0\x80\x80\xAF"), kFour);
  EXPECT_EQ(FromUtf8("\xF4\x90\x80\x80"), kFour);
  EXPECT_EQ(FromUtf8("\xF5\x80\x80\x80"), kFour);
}

TEST(Utf, AHostNameKeepsItsStrayBytes) {
  EXPECT_EQ(FromHostName("caf\xE9.wav"),
            (std::u16string{u'c', u'a', u'f', char16_t{0xDCE9}, u'.', u'w', u'a', u'v'}));
  EXPECT_EQ(ToHostName(FromHostName("caf\xE9.wav")), "caf\xE9.wav");
}

TEST(Utf, AnyHostNameComesBack) {
  std::mt19937 random(1);
  std::uniform_int_distribution<int> anyByte(0, 255);
  std::uniform_int_distribution<int> anyLength(0, 12);
  for (int i = 0; i < 20000; ++i) {
    std::string name(static_cast<std::size_t>(anyLength(random)), '\0');
    for (char& c : name) {
      c = static_cast<char>(anyByte(random));
    }
    ASSERT_EQ(ToHostName(FromHostName(name)), name);
  }
}

TEST(Utf, ASurrogateNeverSmugglesASeparatorIntoAHostName) {
  EXPECT_EQ(ToHostName(std::u16string{char16_t{0xDC2F}}), "\xEF\xBF\xBD");
  EXPECT_EQ(ToHostName(std::u16string{char16_t{0xDC00}}), "\xEF\xBF\xBD");
  EXPECT_EQ(ToHostName(std::u16string{char16_t{0xDD00}}), "\xEF\xBF\xBD");
}

}  // namespace
