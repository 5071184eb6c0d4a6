#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace text {

/// Whether `path` is a path of the device ("\Program Files\...") and not one of the host's own.
[[nodiscard]] bool IsDevicePath(std::u16string_view path);

/// The names along a device path, at least one. Nothing for a path that names no file below the
/// root on any host: one with an empty part, ".", "..", a zero character or a "/" in it.
[[nodiscard]] std::optional<std::vector<std::u16string_view>> SplitDevicePath(
    std::u16string_view path);

}  // namespace text
