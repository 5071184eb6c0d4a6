#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"
#include "platform/result.h"

namespace cli {

/// Returns the bytes of a file that may be a wave file. The error is a part of a sentence, without
/// the file's name.
[[nodiscard]] platform::Result<std::vector<std::byte>, std::string> ReadWaveBytes(
    platform::FileSystem& files, std::u16string_view path);

}  // namespace cli
