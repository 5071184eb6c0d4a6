#include "host/panel/applet_library.h"

#include <dlfcn.h>

#include <utility>

#include "host/panel/message.h"
#include "resources/desktop_strings.h"

namespace panel {
namespace {

QString LatestProblem() {
  // Each process of the panel that loads an applet has one thread at that time.
  const char* text = ::dlerror();  // NOLINT(concurrency-mt-unsafe)
  return text == nullptr ? QStringLiteral("the reason is not known") : QString::fromLocal8Bit(text);
}

}  // namespace

std::unique_ptr<AppletLibrary> AppletLibrary::Load(const std::string& path, std::string& problem) {
  // Any other path means a file of the current folder, or one where the system keeps its libraries.
  if (!path.starts_with('/')) {
    problem =
        Message(resources::kCannotBeLoaded).arg(Message(resources::kNoFullPath)).toStdString();
    return nullptr;
  }
  Handle handle(::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL));
  if (!handle) {
    problem = Message(resources::kCannotBeLoaded).arg(LatestProblem()).toStdString();
    return nullptr;
  }
  const auto function =
      reinterpret_cast<applet::CplAppletFunction>(::dlsym(handle.get(), applet::kCplAppletName));
  if (function == nullptr) {
    problem =
        Message(resources::kIsNoApplet).arg(QLatin1String(applet::kCplAppletName)).toStdString();
    return nullptr;
  }
  return std::unique_ptr<AppletLibrary>(new AppletLibrary(std::move(handle), function));
}

AppletLibrary::AppletLibrary(Handle handle, applet::CplAppletFunction function)
    : m_handle(std::move(handle)), m_function(function) {}

std::int32_t AppletLibrary::Send(applet::CplMessage message, std::intptr_t lParam1,
                                 std::intptr_t lParam2) const {
  return m_function(nullptr, static_cast<std::uint32_t>(message), lParam1, lParam2);
}

void AppletLibrary::Release::operator()(void* library) const {
  static_cast<void>(::dlclose(library));
}

}  // namespace panel
