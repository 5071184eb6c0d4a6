#pragma once

#include <cstdint>
#include <vector>

#include "backends/win32/windows.h"
#include "resources/dialog_template.h"

namespace win32 {

/// Whether a dialog stands in a window of its own or is a page of a sheet.
enum class DialogPlace : std::uint8_t { kWindow, kPage };

/// Returns the record from which the system makes a dialog (DLGTEMPLATEEX), aligned as it must be.
/// The controls stand in it in their order.
[[nodiscard]] std::vector<std::uint32_t> MakeDialogResource(const resources::DialogTemplate& dialog,
                                                            DialogPlace place);

}  // namespace win32
