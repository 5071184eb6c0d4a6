#pragma once

#include <string>

#include "voicemath/voice_mathematics.h"

namespace cli {

/// The file cannot be opened, so there is no header to give a code for.
inline constexpr int kFileNotOpened = -1;

/// Checks the header of the wave file at `path`, which is left closed: a voicemath::HeaderCode, or
/// kFileNotOpened.
[[nodiscard]] int CheckHeader(voicemath::CVoiceMathematics& mathematics,
                              const std::u16string& path);

/// The code in words for the user.
[[nodiscard]] std::string ExplainHeaderCode(int code);

}  // namespace cli
