#include "backends/text/printable.h"

#include <gtest/gtest.h>

namespace {

using text::Printable;

TEST(Printable, TextOfAnyScriptStaysAsItIs) {
  for (const char* said : {"Ann Lee", "Größe", "דנה לוי 054", "سارة", "李安", "😀", "a\u200Db"}) {
    EXPECT_EQ(Printable(said), said);
  }
}

TEST(Printable, ControlCharactersBecomeBlanksButForTabsAndEndsOfLines) {
  EXPECT_EQ(Printable("\x1B]0;title\x07"), " ]0;title ");
  EXPECT_EQ(Printable("a\rb\x7F\bc"), "a b  c");
  EXPECT_EQ(Printable("\u009B31m\u0085\u0090"), " 31m  ");
  EXPECT_EQ(Printable(std::string("a\0b", 3)), "a b");
  EXPECT_EQ(Printable("a\tb\nc"), "a\tb\nc");
}

TEST(Printable, SeparatorsOfLinesAndParagraphsBecomeBlanks) {
  EXPECT_EQ(Printable("a\u2028b\u2029c"), "a b c");
}

TEST(Printable, MarksOfDirectionAreLeftOut) {
  EXPECT_EQ(Printable("\u202Egnp.\u202Cexe"), "gnp.exe");
  EXPECT_EQ(Printable("\u202A\u202B\u202C\u202D\u202E\u2066\u2067\u2068\u2069"), "");
  EXPECT_EQ(Printable("\u200Eדנה\u200F\u061C"), "דנה");
}

TEST(Printable, BytesThatAreNoUtf8AreReplaced) {
  EXPECT_EQ(Printable("a\x9B"
                      "31m"),
            "a\uFFFD31m");
  EXPECT_EQ(Printable("\xED\xA0\x80"), "\uFFFD\uFFFD\uFFFD");
  EXPECT_EQ(Printable("\xC2"), "\uFFFD");
}

TEST(Printable, WhatIsLeftOutMakesNoCommandOfItsNeighbours) {
  EXPECT_EQ(Printable("\xC2\u202E\x9B"), "\uFFFD\uFFFD");
  EXPECT_EQ(Printable("\x1B\u202E[31m"), " [31m");
}

}  // namespace
