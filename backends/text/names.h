#pragma once

#include <string>
#include <string_view>

namespace text {

/// Whether two names of files or keys are the same on the device, where letter case counts for
/// nothing (one-to-one case folding of single characters).
[[nodiscard]] bool SameName(std::u16string_view a, std::u16string_view b);

/// The form under which a name is filed: equal exactly for names that SameName holds equal.
[[nodiscard]] std::u16string FoldName(std::u16string_view name);

/// Whether `name` matches `pattern`: "*" stands for any run of characters, "?" for one character (a
/// surrogate pair is one); letter case counts for nothing.
[[nodiscard]] bool MatchesPattern(std::u16string_view name, std::u16string_view pattern);

/// Whether `pattern` holds a "*" or a "?", so that it may match more than one name.
[[nodiscard]] bool HasWildcards(std::u16string_view pattern);

}  // namespace text
