#include "dialer/number.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>

namespace {

using dialer::NumberFault;
using std::string_view_literals::operator""sv;
using testing::HasSubstr;

/// The URI, or "refused".
std::string UriOf(std::u16string_view stored) {
  const auto number = dialer::MakeNumber(stored);
  return number ? number->ToUri() : "refused";
}

std::string DialStringOf(std::u16string_view stored) {
  const auto number = dialer::MakeNumber(stored);
  return number ? number->ToDialString() : "refused";
}

std::optional<NumberFault> FaultOf(std::u16string_view stored) {
  const auto number = dialer::MakeNumber(stored);
  return number ? std::nullopt : std::optional(number.error().fault);
}

TEST(Number, BlanksDotsDashesAndBracketsSeparate) {
  EXPECT_EQ(UriOf(u"+1 202 555 0101"), "tel:+12025550101");
  EXPECT_EQ(UriOf(u" (202) 555-0101 "), "tel:2025550101");
  EXPECT_EQ(UriOf(u"202.555.0101"), "tel:2025550101");
  EXPECT_EQ(UriOf(u"[+49] 30\u00A01234\u20135"), "tel:+493012345");
}

TEST(Number, ADigitInBracketsIsDialledLikeEveryOther) {
  EXPECT_EQ(UriOf(u"+44 (0)20 7946 0000"), "tel:+4402079460000");
}

TEST(Number, StarsAndHashesStayAndAHashBeginsNoFragmentOfTheUri) {
  EXPECT_EQ(UriOf(u"*100#"), "tel:*100%23");
  EXPECT_EQ(DialStringOf(u"*100#"), "*100#");
}

TEST(Number, EveryPauseOfATelephoneIsACommaInTheUri) {
  EXPECT_EQ(UriOf(u"555 0101,,42#"), "tel:5550101,,42%23");
  EXPECT_EQ(UriOf(u"5550101p42P1w2W3"), "tel:5550101,42,1,2,3");
}

TEST(Number, AModemWaitsForADialToneIfTheNumberSaysSo) {
  EXPECT_EQ(DialStringOf(u"+1 202 555 0101 p 42 w 7"), "+12025550101,42W7");
}

TEST(Number, AnExtensionIsKept) {
  EXPECT_EQ(UriOf(u"+1 202 555 0101;ext=4-2"), "tel:+12025550101;ext=42");
  EXPECT_EQ(UriOf(u"5550101;EXT=42"), "tel:5550101;ext=42");
  EXPECT_EQ(DialStringOf(u"5550101;ext=42"), "5550101,42");
}

TEST(Number, AnythingElseAfterTheNumberIsRefused) {
  for (const char16_t* stored :
       {u"5550101;", u"5550101;ext=", u"5550101;ext", u"5550101;ext=4;ext=5", u"5550101;ext=4x",
        u"5550101;isub=1", u"5550101;phone-context=+1", u"5550101;ext=4,2", u"555;0101"}) {
    EXPECT_EQ(FaultOf(stored), NumberFault::kExtension) << DialStringOf(stored);
  }
}

TEST(Number, LettersAndOtherSignsAreRefused) {
  for (const char16_t* stored :
       {u"1-800-FLOWERS", u"555%0101", u"555\"0101", u"555'0101", u"030/12345", u"555!", u"555@",
        u"tel:5550101", u"5550101 x42", u"A5550101", u"555&1", u"555>1", u"555\\1", u"555=1"}) {
    EXPECT_EQ(FaultOf(stored), NumberFault::kWrongCharacter) << DialStringOf(stored);
  }
}

TEST(Number, NoControlCharacterReachesAModem) {
  for (const std::u16string_view stored :
       {u"555\r"sv, u"555\rATH"sv, u"555\n0101"sv, u"555\t0101"sv, u"555\u001B[2J"sv, u"555\0001"sv,
        u"555\u0085"sv, u"\u202A5550101\u202C"sv, u"555\u200B1"sv, u"555\uFEFF1"sv,
        u"555\u2028"sv}) {
    EXPECT_EQ(FaultOf(stored), NumberFault::kWrongCharacter) << DialStringOf(stored);
  }
}

TEST(Number, DigitsOfOtherScriptsAreRefused) {
  EXPECT_EQ(FaultOf(u"\u0661\u0662\u0663"), NumberFault::kWrongCharacter);  // Arabic.
  EXPECT_EQ(FaultOf(u"\uFF15\uFF15\uFF15"), NumberFault::kWrongCharacter);  // Of full width.
  EXPECT_EQ(FaultOf(u"555\u00B2"), NumberFault::kWrongCharacter);           // A small two.
  EXPECT_EQ(FaultOf(u"\uFF0B1202"), NumberFault::kWrongCharacter);          // A wide plus.
}

TEST(Number, APlusStandsAtTheBeginningOnly) {
  EXPECT_EQ(UriOf(u"(+49) 30 1"), "tel:+49301");
  for (const char16_t* stored : {u"1+2", u"++1", u"0049+30", u"5550101,+1"}) {
    EXPECT_EQ(FaultOf(stored), NumberFault::kPlusWithin) << DialStringOf(stored);
  }
}

TEST(Number, APauseStandsBetweenDigitsOnly) {
  for (const char16_t* stored : {u",555", u"p555", u"+,1", u"555w", u"555 P", u"555,"}) {
    EXPECT_EQ(FaultOf(stored), NumberFault::kLonePause) << DialStringOf(stored);
  }
}

TEST(Number, ATextWithoutDigitsIsRefused) {
  for (const char16_t* stored : {u"", u" ", u"+", u"()", u"-", u";ext=4"}) {
    EXPECT_EQ(FaultOf(stored), NumberFault::kNoDigits) << DialStringOf(stored);
  }
}

TEST(Number, ATooLongTextIsRefused) {
  EXPECT_EQ(FaultOf(std::u16string(dialer::kMostDialled, u'1')), std::nullopt);
  EXPECT_EQ(FaultOf(std::u16string(dialer::kMostDialled + 1, u'1')), NumberFault::kTooLong);
  EXPECT_EQ(FaultOf(std::u16string(dialer::kMostDialled - 1, u'1') + u";ext=42"),
            NumberFault::kTooLong);
}

TEST(Number, ARefusalShowsTheTextWithEveryHiddenCharacter) {
  const auto refused = dialer::MakeNumber(u"555\rATH\u202E1");
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error().shown, u"555<U+000D>ATH<U+202E>1");
  EXPECT_THAT(dialer::Explain(refused.error()), HasSubstr("\"555<U+000D>ATH<U+202E>1\""));
}

TEST(Number, ARefusalShowsWhatNobodyWouldSee) {
  for (const auto& [stored, shown] :
       {std::pair(u"555\u200B1", u"555<U+200B>1"), std::pair(u"\uFEFF5551", u"<U+FEFF>5551"),
        std::pair(u"555\u00AD1", u"555<U+00AD>1"), std::pair(u"555\u20601", u"555<U+2060>1")}) {
    const auto refused = dialer::MakeNumber(stored);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().shown, shown);
  }
}

TEST(Number, ARefusalShowsTheBeginningOfALongText) {
  const auto refused = dialer::MakeNumber(std::u16string(100'000, u'x'));
  ASSERT_FALSE(refused);
  EXPECT_LT(refused.error().shown.size(), 100U);
}

// What a contact may have as its number to make a modem or the desktop do something else.
TEST(Number, NoTextByWhichAContactWouldCommandAnythingIsANumber) {
  for (const std::u16string_view stored : {u"5550101\rATH"sv,
                                           u"5550101\nATH"sv,
                                           u"5550101\r\nAT&F"sv,
                                           u"5550101;\rATZ"sv,
                                           u"5550101\0ATH"sv,
                                           u"5550101\x1A"sv,
                                           u"5550101\x7F"sv,
                                           u"5550101\x1B[2J"sv,
                                           u"5550101\x11\x13"sv,
                                           u"5550101\t"sv,
                                           u"\r5550101"sv,
                                           u"+++ATH0"sv,
                                           u"+++"sv,
                                           u"5550101;+CFUN=0"sv,
                                           u"5550101;H"sv,
                                           u"5550101;S0=1"sv,
                                           u"5550101;;"sv,
                                           u"T5550101"sv,
                                           u"P5550101"sv,
                                           u"L"sv,
                                           u"DL"sv,
                                           u"5550101@"sv,
                                           u"5550101!"sv,
                                           u"5550101>1"sv,
                                           u"5550101I"sv,
                                           u"5550101G"sv,
                                           u"5550101/"sv,
                                           u"A/"sv,
                                           u"5550101=1"sv,
                                           u"5550101?"sv,
                                           u"5550101&W"sv,
                                           u"5550101\\r"sv,
                                           u"5550101^M"sv,
                                           u"5550101%0DATH"sv,
                                           u"5550101%"sv,
                                           u"%2B5550101"sv,
                                           u"tel:5550101"sv,
                                           u"sip:5550101@example.org"sv,
                                           u"file:///etc/passwd"sv,
                                           u"javascript:alert(1)"sv,
                                           u"--help"sv,
                                           u"-e/bin/sh"sv,
                                           u"5550101 & reboot"sv,
                                           u"5550101|sh"sv,
                                           u"$(reboot)"sv,
                                           u"`reboot`"sv,
                                           u"5550101'"sv,
                                           u"\"5550101\""sv,
                                           u"5550101?subject=x"sv,
                                           u"5550101;ext=1;ext=2"sv,
                                           u"5550101;ext=%31"sv,
                                           u"5550101;ext=1\rATH"sv,
                                           u"5550101;phone-context=evil.example"sv,
                                           u"5550101;isub=1"sv,
                                           u"5550101;ext=\u0661"sv,
                                           u"\u0665\u0665\u0665"sv,
                                           u"\uFF15\uFF15\uFF15"sv,
                                           u"\u0967\u0968\u0969"sv,
                                           u"\U0001D7D3\U0001D7D3"sv,
                                           u"555\u200D0101"sv,
                                           u"555\u202E1010"sv,
                                           u"555\u2028ATH"sv,
                                           u"555\uFF1B1"sv,
                                           u"555\u037E1"sv,
                                           u"0190,"sv,
                                           u"w"sv}) {
    EXPECT_EQ(DialStringOf(stored), "refused");
  }
}

TEST(Number, TheTextStaysAsItIsStored) {
  const auto number = dialer::MakeNumber(u"+1 (202) 555-0101");
  ASSERT_TRUE(number);
  EXPECT_EQ(number->GetText(), u"+1 (202) 555-0101");
}

}  // namespace
