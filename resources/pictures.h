#pragma once

#include <cstddef>
#include <span>

namespace resources {

// Numbers of the pictures.
inline constexpr int kAppletIcon = 129;
inline constexpr int kMakerPicture = 136;
inline constexpr int kHelpPicture = 142;
inline constexpr int kWebSitePicture = 143;
inline constexpr int kProductPicture = 2000;

/// A drawing of a picture: SVG of the small subset that every renderer knows (paths, plain shapes,
/// linear gradients; no text), on a transparent ground.
struct Picture {
  int number = 0;
  int width = 0;  ///< Its own size, in pixels of the device.
  int height = 0;
  std::span<const std::byte> svg;  ///< Lives as long as the program.
};

/// The picture of that number; null where there is none.
[[nodiscard]] const Picture* FindPicture(int number);

/// The drawing to show a picture `pixels` high with: small sizes of the icon have their own, which
/// leave out what would blur. A drawing can be smaller or larger than what was asked for and is
/// then to be scaled. Null where there is no such picture.
[[nodiscard]] const Picture* FindPictureFor(int number, int pixels);

}  // namespace resources
