#pragma once

#include <QString>
#include <string_view>

#include "backends/qt/strings.h"

namespace home {

using qt::Say;

}  // namespace home
