#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "applet/control_panel.h"

namespace panel {

/// A loaded library of applets. Released, and its code gone, with the object.
class AppletLibrary {
 public:
  /// Returns null, with the reason in `problem`, if the library cannot be loaded or is no applet,
  /// or if `path` is not a full path.
  [[nodiscard]] static std::unique_ptr<AppletLibrary> Load(const std::string& path,
                                                           std::string& problem);

  [[nodiscard]] std::int32_t Send(applet::CplMessage message, std::intptr_t lParam1 = 0,
                                  std::intptr_t lParam2 = 0) const;

 private:
  struct Release {
    void operator()(void* library) const;
  };
  using Handle = std::unique_ptr<void, Release>;

  AppletLibrary(Handle handle, applet::CplAppletFunction function);

  Handle m_handle;
  applet::CplAppletFunction m_function;
};

}  // namespace panel
