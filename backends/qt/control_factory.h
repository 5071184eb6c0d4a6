#pragma once

#include <functional>

#include "backends/qt/control.h"
#include "backends/qt/pictures.h"
#include "platform/dialog_handler.h"

namespace qt {

/// Makes the widget of a control, a child of `surface` at its place, and has the user's doing told
/// to `tell`.
[[nodiscard]] Control MakeControl(const resources::ControlTemplate& description, QWidget& surface,
                                  Pictures& pictures,
                                  const std::function<void(platform::CommandEvent)>& tell);

}  // namespace qt
