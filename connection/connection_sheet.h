#pragma once

#include <string_view>

#include "platform/registry.h"
#include "platform/ui.h"

namespace connection {

/// Shows a sheet with the connection settings alone until the user closes it; true where that was
/// by OK, which stores them.
bool RunConnectionSheet(platform::Ui& ui, platform::Registry& registry,
                        std::u16string_view caption);

}  // namespace connection
