#pragma once

#include "backends/headless/headless_dialog.h"

namespace cli {

// These wait in the place of a user in front of a window with a bar. They show on a terminal how
// far the work has come.

/// While every template is computed again. Closes the dialog as soon as it lets itself be closed.
void WatchReinit(headless::HeadlessDialog& window);

/// While voice tags are compared that take long.
void WatchComparison(headless::HeadlessDialog& window);

}  // namespace cli
