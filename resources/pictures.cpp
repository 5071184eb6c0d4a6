#include "resources/pictures.h"

#include <algorithm>
#include <array>

#include "resources/picture_bytes.h"

namespace resources {
namespace {

// The drawing in the picture's own size stands first; the others of a picture follow by size.
constexpr std::array kPictures = {
    Picture{kAppletIcon, 48, 48, kBytesOf129},      Picture{kAppletIcon, 16, 16, kBytesOf129For16},
    Picture{kAppletIcon, 22, 22, kBytesOf129For22}, Picture{kAppletIcon, 24, 24, kBytesOf129For24},
    Picture{kAppletIcon, 32, 32, kBytesOf2000},     Picture{kMakerPicture, 70, 24, kBytesOf136},
    Picture{kHelpPicture, 20, 20, kBytesOf142},     Picture{kWebSitePicture, 147, 13, kBytesOf143},
    Picture{kProductPicture, 32, 32, kBytesOf2000},
};

/// A drawing scaled up keeps its lines; one scaled down blurs them.
bool IsBetter(const Picture& a, const Picture& b, int pixels) {
  const bool fits = a.height <= pixels;
  if (fits != (b.height <= pixels)) {
    return fits;
  }
  return fits ? a.height > b.height : a.height < b.height;
}

}  // namespace

const Picture* FindPicture(int number) {
  const auto* const found = std::ranges::find(kPictures, number, &Picture::number);
  return found == kPictures.end() ? nullptr : found;
}

const Picture* FindPictureFor(int number, int pixels) {
  const Picture* best = nullptr;
  for (const Picture& picture : kPictures) {
    if (picture.number == number && (best == nullptr || IsBetter(picture, *best, pixels))) {
      best = &picture;
    }
  }
  return best;
}

}  // namespace resources
