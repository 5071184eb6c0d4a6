#include "applet/loaded_doors.h"

#include <cstdio>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "applet/no_sound.h"
#include "platform/desktop_books.h"
#include "platform/posix/loaded_library.h"
#include "platform/sound_library.h"

namespace applet {
namespace {

/// A library that lies beside the applet's, or where it was built.
posix::LoadedFunction LoadDoor(const char* library, const char* folder, const char* door) {
  const std::filesystem::path own = posix::FindOwnFile().parent_path();
  const std::filesystem::path built = std::filesystem::path("platform") / folder;
  std::vector<std::filesystem::path> places;
  for (const std::filesystem::path& way :
       {std::filesystem::path("."), std::filesystem::path("../lib/voxtrel"), ".." / built,
        "../.." / built}) {
    places.push_back((own / way / library).lexically_normal());
  }
  return posix::LoadFunction(places, door);
}

template <typename Function, typename Interface, typename None>
std::unique_ptr<Interface> LoadSound(const char* door, const char* what) {
  const posix::LoadedFunction found = LoadDoor(platform::kSoundLibrary, "pulse", door);
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
  posix::LoadedFunction found =
      LoadDoor(platform::kDesktopBooksLibrary, "ebook", platform::kReadDesktopBooksName);
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
