// The door of the library: the one function that it exports.

#include <exception>
#include <type_traits>

#include "applet/control_panel.h"
#include "backends/text/utf.h"
#include "host/applet/desktop.h"

extern "C" __attribute__((visibility("default"))) std::int32_t CPlApplet(void* parentWindow,
                                                                         std::uint32_t message,
                                                                         std::intptr_t lParam1,
                                                                         std::intptr_t lParam2);

static_assert(std::is_same_v<decltype(&CPlApplet), applet::CplAppletFunction>);

std::int32_t CPlApplet(void* /*parentWindow*/, std::uint32_t message, std::intptr_t lParam1,
                       std::intptr_t lParam2) {
  // Nothing of the system throws, but a library that ran out of something does. A host knows
  // nothing of that.
  try {
    // Lives until the library is unloaded, or the process ends.
    static applet::Desktop applet(applet::ReadDesktopOptions());
    return applet.Answer(message, lParam1, lParam2);
  } catch (const std::exception& error) {
    applet::ReportOnStandardError(text::FromUtf8(error.what()));
    return 0;
  }
}
