#pragma once

#include <cstdint>
#include <string_view>

#include "platform/platform.h"

namespace maintenance {

enum class RepairResult : std::uint8_t {
  kDone,
  kNoRecording,  ///< None that a template can be made of.
  kNoFolder,     ///< For templates.
  kNotWritten,
};

/// A sentence without a full stop; empty for kDone.
[[nodiscard]] std::string_view Describe(RepairResult result);

/// Computes the template of a tag anew from its kept recording, which is left as it is. Where that
/// fails an unusable template may be gone, and nothing else has changed. Message boxes of the
/// speech mathematics go to the `ui` of `platform`.
[[nodiscard]] RepairResult RepairTemplate(const platform::Platform& platform,
                                          std::u16string_view tagName);

}  // namespace maintenance
