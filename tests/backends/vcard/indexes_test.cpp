#include "backends/vcard/indexes.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace vcard {
namespace {

TEST(OidIndex, FindsEachNumberThatWasAddedAndNoOther) {
  constexpr std::int32_t kMany = 10'000;
  OidIndex index;
  EXPECT_FALSE(index.Holds(1));
  for (std::int32_t i = 1; i <= kMany; ++i) {
    // Neighbours, and numbers whose low bits are all alike.
    EXPECT_TRUE(index.Add(i, static_cast<std::size_t>(i)));
    EXPECT_TRUE(index.Add(-i * 65'536, static_cast<std::size_t>(kMany + i)));
  }
  for (std::int32_t i = 1; i <= kMany; ++i) {
    EXPECT_EQ(index.Find(i), static_cast<std::uint32_t>(i));
    EXPECT_EQ(index.Find(-i * 65'536), static_cast<std::uint32_t>(kMany + i));
    EXPECT_FALSE(index.Holds(kMany + i));
    EXPECT_FALSE(index.Holds(-i));
  }
  EXPECT_FALSE(index.Holds(0));
  EXPECT_FALSE(index.Holds(std::numeric_limits<std::int32_t>::min()));
}

TEST(OidIndex, TheFirstThingOfANumberStays) {
  OidIndex index;
  EXPECT_TRUE(index.Add(-7, 1));
  EXPECT_FALSE(index.Add(-7, 2));
  EXPECT_EQ(index.Find(-7), 1U);
}

}  // namespace
}  // namespace vcard
