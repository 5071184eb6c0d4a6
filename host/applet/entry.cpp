// The door of the library: the one function that it exports.

#include <cstdlib>
#include <exception>
#include <filesystem>
#include <string>

#include "applet/control_panel.h"
#include "backends/posix/loaded_library.h"
#include "backends/text/utf.h"
#include "host/applet/library.h"
#include "host/applet/no_window.h"
#include "host/applet/qt_presentation.h"
#include "host/machine/places.h"
#include "resources/pictures.h"

extern "C" __attribute__((visibility("default"))) std::int32_t CPlApplet(void* parentWindow,
                                                                         std::uint32_t message,
                                                                         std::intptr_t lParam1,
                                                                         std::intptr_t lParam2);

namespace {

static_assert(std::is_same_v<decltype(&CPlApplet), applet::CplAppletFunction>);

std::string GetVariable(const char* name) {
  // Read once, by the first message, before there is a second thread.
  const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe)
  return value == nullptr ? std::string() : std::string(value);
}

/// The help is installed with the library, or was built with it; else it is where the machine's
/// programs keep their data.
std::vector<std::string> FindHelpFolders(const desktop::Environment& environment) {
  const machine::Places places(posix::FindOwnFile());
  std::vector<std::string> folders{(places.GetDataFolder() / "help").native()};
  for (const std::string& data : environment.dataFolders) {
    folders.push_back(data + "/voxtrel/help");
  }
  return folders;
}

std::span<const std::byte> GetPicture(int number) {
  const resources::Picture* const picture = resources::FindPicture(number);
  return picture == nullptr ? std::span<const std::byte>() : picture->svg;
}

applet::LibraryOptions ReadOptions() {
  applet::LibraryOptions options;
  options.backends = machine::ReadOptions();
  options.environment = desktop::ReadEnvironment();
  options.runtimeFolder = GetVariable("XDG_RUNTIME_DIR");
  options.activationToken = GetVariable("XDG_ACTIVATION_TOKEN");
  options.helpFolders = FindHelpFolders(options.environment);
  options.getPicture = GetPicture;
  options.makePresentation = applet::MakeDesktopPresentation;
  return options;
}

}  // namespace

std::int32_t CPlApplet(void* /*parentWindow*/, std::uint32_t message, std::intptr_t lParam1,
                       std::intptr_t lParam2) {
  // Nothing of the system throws; a library that ran out of something does. A host knows nothing of
  // that.
  try {
    // Lives until the library is unloaded, or the process ends.
    static applet::Library library(ReadOptions());
    return library.Answer(message, lParam1, lParam2);
  } catch (const std::exception& error) {
    applet::TellOnStandardError(text::FromUtf8(error.what()));
    return 0;
  }
}
