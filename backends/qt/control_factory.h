#pragma once

#include "backends/qt/control.h"
#include "backends/qt/pictures.h"

namespace qt {

/// Makes the widget of a control: a child of `surface`, at its place.
[[nodiscard]] Control MakeControl(const resources::ControlTemplate& description, QWidget& surface,
                                  Pictures& pictures);

}  // namespace qt
