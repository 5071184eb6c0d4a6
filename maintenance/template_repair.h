#pragma once

#include <cstdint>
#include <string_view>

#include "platform/platform.h"

namespace maintenance {

/// Why a template was not made again.
enum class RepairError : std::uint8_t {
  kNoRecording,  ///< None that a template can be made of.
  kNoFolder,     ///< For templates.
  kNotWritten,
};

/// Returns a sentence without a full stop.
[[nodiscard]] std::string_view Describe(RepairError error);

/// Computes the template of a tag again from its kept recording, which is left as it is. After a
/// failure an unusable template may be gone, and nothing else has changed. Message boxes of the
/// speech mathematics go to the `ui` of `platform`.
[[nodiscard]] platform::Result<void, RepairError> RepairTemplate(const platform::Platform& platform,
                                                                 std::u16string_view tagName);

}  // namespace maintenance
