#pragma once

#include <string_view>

#include "platform/platform.h"

namespace maintenance {

/// Computes the template of a tag anew from its kept recording, which is left as it is. False where
/// that failed; an unusable template is gone then, and nothing else has changed. Message boxes of
/// the speech mathematics go to the `ui` of `platform`.
[[nodiscard]] bool RepairTemplate(const platform::Platform& platform, std::u16string_view tagName);

}  // namespace maintenance
