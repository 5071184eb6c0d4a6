#include "host/cli/band_picture.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using cli::DrawBands;
using cli::PictureStyle;

constexpr std::size_t kNameLength = 17;

std::string Drawing(const std::string& line) { return line.substr(kNameLength); }

TEST(BandPicture, DrawsTheHighestBandFirstAgainstItsOwnMaximum) {
  const std::vector<float> values{0, 1, 2, 3, 0,  //
                                  8, 1, 1, 0, 4};
  const auto lines = DrawBands(values, 60, PictureStyle::kAscii);
  ASSERT_EQ(lines.size(), 5U);
  EXPECT_EQ(Drawing(lines[0]), " @");
  EXPECT_EQ(Drawing(lines[1]), "@ ");
  EXPECT_EQ(Drawing(lines[2]), "@=");
  EXPECT_EQ(Drawing(lines[3]), "@@");
  EXPECT_EQ(Drawing(lines[4]), " @");
  EXPECT_EQ(lines[4].substr(0, 15), " 108 to  484 Hz");
}

TEST(BandPicture, WithoutFramesOrSoundStaysEmpty) {
  EXPECT_EQ(Drawing(DrawBands({}, 60, PictureStyle::kAscii)[0]), "");
  EXPECT_EQ(Drawing(DrawBands(std::vector<float>(15), 60, PictureStyle::kAscii)[0]), "   ");
}

TEST(BandPicture, GathersMoreFramesThanColumnsByTheirLargestValue) {
  std::vector<float> values(5 * 1000);
  values[5 * 999] = 1.0F;
  const auto lines = DrawBands(values, 10, PictureStyle::kAscii);
  EXPECT_EQ(Drawing(lines[4]), "         @");
}

TEST(BandPicture, SurvivesValuesThatAreNoNumbers) {
  const std::vector<float> values{std::nanf(""), INFINITY, -1, 0, 1};
  const auto lines = DrawBands(values, 10, PictureStyle::kAscii);
  EXPECT_EQ(Drawing(lines[4]), " ");
  EXPECT_EQ(Drawing(lines[3]), " ");
  EXPECT_EQ(Drawing(lines[2]), " ");
  EXPECT_EQ(Drawing(lines[0]), "@");
}

}  // namespace
