#include "resources/pictures.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace {

constexpr int kEveryPicture[] = {resources::kAppletIcon, resources::kMakerPicture,
                                 resources::kHelpPicture, resources::kWebSitePicture,
                                 resources::kProductPicture};

std::string TextOf(const resources::Picture& picture) {
  std::string text;
  std::ranges::transform(picture.svg, std::back_inserter(text),
                         [](std::byte b) { return static_cast<char>(b); });
  return text;
}

std::string SizeAttributes(const resources::Picture& picture) {
  return "width=\"" + std::to_string(picture.width) + "\" height=\"" +
         std::to_string(picture.height) + "\"";
}

TEST(Pictures, EveryDrawingHasTheSizeThatItIsListedWith) {
  for (const int number : kEveryPicture) {
    for (int pixels = 1; pixels <= 64; ++pixels) {
      const resources::Picture* picture = resources::FindPictureFor(number, pixels);
      ASSERT_NE(picture, nullptr) << number;
      EXPECT_EQ(picture->number, number);
      EXPECT_NE(TextOf(*picture).find(SizeAttributes(*picture)), std::string::npos) << number;
    }
  }
}

TEST(Pictures, EveryDrawingIsWhole) {
  for (const int number : kEveryPicture) {
    const resources::Picture* picture = resources::FindPicture(number);
    ASSERT_NE(picture, nullptr) << number;
    EXPECT_TRUE(TextOf(*picture).starts_with("<svg ")) << number;
    EXPECT_TRUE(TextOf(*picture).ends_with("</svg>\n")) << number;
  }
}

TEST(Pictures, FitThePlacesOnThePagesThatTheyAreDrawnAt) {
  const resources::Picture* product = resources::FindPicture(resources::kProductPicture);
  EXPECT_LT(8 + product->width, 46) << "must end before the product line";
  const resources::Picture* webSite = resources::FindPicture(resources::kWebSitePicture);
  EXPECT_EQ(webSite->width, 202 - 55) << "fills the rectangle that can be clicked";
  EXPECT_EQ(webSite->height, 173 - 160);
  const resources::Picture* maker = resources::FindPicture(resources::kMakerPicture);
  EXPECT_LE(158 + maker->width, 240) << "must end within the page";
}

TEST(Pictures, TheSmallIconsAreDrawnOnTheirOwnGrid) {
  for (const int size : {16, 22, 24, 32, 48}) {
    EXPECT_EQ(resources::FindPictureFor(resources::kAppletIcon, size)->width, size);
  }
}

TEST(Pictures, ASizeBetweenTakesTheNextSmallerDrawing) {
  EXPECT_EQ(resources::FindPictureFor(resources::kAppletIcon, 23)->width, 22);
  EXPECT_EQ(resources::FindPictureFor(resources::kAppletIcon, 47)->width, 32);
}

TEST(Pictures, SizesBeyondAllDrawingsTakeTheNearest) {
  EXPECT_EQ(resources::FindPictureFor(resources::kAppletIcon, 256)->width, 48);
  EXPECT_EQ(resources::FindPictureFor(resources::kAppletIcon, 8)->width, 16);
}

TEST(Pictures, ThereIsNoPictureOfAnotherNumber) {
  EXPECT_EQ(resources::FindPicture(144), nullptr);
  EXPECT_EQ(resources::FindPictureFor(144, 16), nullptr);
}

}  // namespace
