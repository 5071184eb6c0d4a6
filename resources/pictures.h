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

/// Returns the picture of that number in its own size. Returns null if there is none.
[[nodiscard]] const Picture* FindPicture(int number);

/// Returns the drawing to show a picture `pixels` high with. Small sizes of the icon have drawings
/// of their own, which leave out what would blur. The drawing can be smaller or larger than
/// `pixels`, and the caller scales it. Returns null if there is no such picture.
[[nodiscard]] const Picture* FindPictureFor(int number, int pixels);

}  // namespace resources
