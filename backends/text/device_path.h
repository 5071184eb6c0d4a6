#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace text {

/// Whether `path` is a path of the device ("\Program Files\...") and not one of the host's own.
[[nodiscard]] bool IsDevicePath(std::u16string_view path);

/// Returns the names along a device path, at least one. Returns nothing if the path names no file
/// below the root on any host: it has an empty part, ".", "..", a zero character or a "/" in it.
[[nodiscard]] std::optional<std::vector<std::u16string_view>> SplitDevicePath(
    std::u16string_view path);

}  // namespace text
