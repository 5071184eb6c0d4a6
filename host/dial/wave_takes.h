#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"
#include "platform/result.h"

namespace dial {

/// Returns the sound of a wave file of any usual format as the recorder would have it. The error is
/// a part of a sentence, without the file's name.
[[nodiscard]] platform::Result<std::vector<std::int16_t>, std::string> ReadTake(
    platform::FileSystem& files, std::u16string_view path);

}  // namespace dial
