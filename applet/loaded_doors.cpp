#include "applet/loaded_doors.h"

#include <cstdio>
#include <string>
#include <utility>

#include "applet/no_sound.h"
#include "platform/desktop_books.h"
#include "platform/loading/loaded_library.h"
#include "platform/sound_library.h"

namespace applet {
namespace {

template <typename Function, typename Interface, typename None>
std::unique_ptr<Interface> LoadSound(const char* door, const char* what) {
  const loading::LoadedFunction found = loading::LoadDoor(platform::kSoundLibrary, "pulse", door);
  std::unique_ptr<Interface> made;
  if (found.address == nullptr) {
    std::fputs((std::string("voxtrel: no ") + what + ": " + found.reason + '\n').c_str(), stderr);
    made = std::make_unique<None>();
  } else {
    reinterpret_cast<Function*>(found.address)(made);
  }
  return made;
}

}  // namespace

vcard::DesktopSource::Library LoadDesktopBooks() {
  loading::LoadedFunction found =
      loading::LoadDoor(platform::kDesktopBooksLibrary, "ebook", platform::kReadDesktopBooksName);
  return {reinterpret_cast<platform::ReadDesktopBooksFunction*>(found.address),
          std::move(found.reason)};
}

std::unique_ptr<platform::WaveIn> LoadWaveIn() {
  return LoadSound<platform::MakeWaveInFunction, platform::WaveIn, NoWaveIn>(
      platform::kMakeWaveInName, "microphone");
}

std::unique_ptr<platform::WaveOut> LoadWaveOut() {
  return LoadSound<platform::MakeWaveOutFunction, platform::WaveOut, NoWaveOut>(
      platform::kMakeWaveOutName, "loudspeaker");
}

}  // namespace applet
