#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace text {

// Names and paths of files and keys. On the device letter case counts for nothing in them.

/// Returns the one character under which a character is compared if case counts for nothing. The
/// folding is one to one: no character becomes two.
[[nodiscard]] char32_t FoldCharacter(char32_t character);

/// Returns whether two names are the same on the device.
[[nodiscard]] bool SameName(std::u16string_view a, std::u16string_view b);

/// Returns the form under which a name is filed. Two names have the same form exactly if SameName
/// holds them equal.
[[nodiscard]] std::u16string FoldName(std::u16string_view name);

/// Returns whether `name` matches `pattern`. In a pattern "*" stands for any run of characters and
/// "?" for one character; a surrogate pair is one character. Letter case counts for nothing.
[[nodiscard]] bool MatchesPattern(std::u16string_view name, std::u16string_view pattern);

/// Returns whether `pattern` holds a "*" or a "?", so that it may match more than one name.
[[nodiscard]] bool HasWildcards(std::u16string_view pattern);

/// Returns whether `path` is a path of the device ("\Program Files\...") and not one of the host's
/// own.
[[nodiscard]] bool IsDevicePath(std::u16string_view path);

/// Returns the names along a device path, at least one. Returns nothing if the path names no file
/// below the root on any host: it has an empty part, ".", "..", a zero character or a "/" in it.
[[nodiscard]] std::optional<std::vector<std::u16string_view>> SplitDevicePath(
    std::u16string_view path);

}  // namespace text
