#include <gtest/gtest.h>

#include "backends/text/names.h"

namespace {

TEST(NamesWithoutLibrary, CharactersBeyondAsciiAreComparedAsTheyStand) {
  EXPECT_TRUE(text::SameName(u"äA", u"äa"));
  EXPECT_FALSE(text::SameName(u"Ä", u"ä"));
}

}  // namespace
