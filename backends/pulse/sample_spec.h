#pragma once

#include <pulse/sample.h>

#include <optional>

#include "platform/wave_format.h"

namespace pulse {

/// The same format in the library's terms; nothing where it has none for it.
[[nodiscard]] std::optional<pa_sample_spec> ToSampleSpec(const platform::WaveFormat& format);

}  // namespace pulse
