#pragma once

#include "platform/headless/headless_dialog.h"

namespace cli {

/// Is the user in front of the dialog that waits while every template is computed anew: shows on a
/// terminal how far that has come, and closes the dialog as soon as it lets itself be closed.
void WatchReinit(headless::HeadlessDialog& window);

}  // namespace cli
