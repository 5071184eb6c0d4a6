#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"

namespace support {

[[nodiscard]] std::vector<std::byte> ToBytes(std::string_view text);
[[nodiscard]] std::string ToText(const std::vector<std::byte>& bytes);

/// Makes or empties a file and writes it; any failure is reported.
[[nodiscard]] platform::Result<void, platform::FileError> WriteWhole(platform::FileSystem& files,
                                                                     std::u16string_view path,
                                                                     std::string_view content);

/// The whole content; nothing if the file cannot be opened or read.
[[nodiscard]] std::optional<std::string> ReadWhole(platform::FileSystem& files,
                                                   std::u16string_view path);

/// Names found by a pattern, in any order; empty if nothing matches.
[[nodiscard]] std::vector<std::u16string> FindNames(platform::FileSystem& files,
                                                    std::u16string_view pattern);

}  // namespace support
