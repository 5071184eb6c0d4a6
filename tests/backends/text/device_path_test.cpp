#include "backends/text/names.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace {

using testing::ElementsAre;
using testing::Optional;
using text::IsDevicePath;
using text::SplitDevicePath;

TEST(DevicePath, BeginsWithABackslash) {
  EXPECT_TRUE(IsDevicePath(u"\\Program Files"));
  EXPECT_FALSE(IsDevicePath(u"/home/lee"));
  EXPECT_FALSE(IsDevicePath(u"a\\b"));
  EXPECT_FALSE(IsDevicePath(u""));
}

TEST(DevicePath, SplitsIntoItsNames) {
  EXPECT_THAT(SplitDevicePath(u"\\Program Files\\Zedra Tech.\\x.wav"),
              Optional(ElementsAre(u"Program Files", u"Zedra Tech.", u"x.wav")));
  EXPECT_THAT(SplitDevicePath(u"\\..."), Optional(ElementsAre(u"...")));
}

TEST(DevicePath, NoneThatCouldLeaveTheRootOrNamesNothingIsSplit) {
  for (const std::u16string_view path :
       {u"", u"\\", u"\\\\a", u"\\a\\", u"\\a\\\\b", u"\\..", u"\\a\\..\\b", u"\\.", u"\\a\\.",
        u"\\a/b", u"\\a\\../../etc", u"a\\b"}) {
    EXPECT_FALSE(SplitDevicePath(path).has_value()) << std::string(path.begin(), path.end());
  }
  EXPECT_FALSE(SplitDevicePath(std::u16string_view(u"\\a\0b", 4)).has_value());
}

}  // namespace
