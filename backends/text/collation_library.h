#pragma once

#include <string_view>

namespace text {

/// The door of the library with the collation tables of all scripts: below 0, 0 or above 0 as the
/// first text stands before, with or behind the second. May be called from any thread.
using CompareFunction = int(std::u16string_view a, std::u16string_view b);

inline constexpr const char* kCollationLibrary = "voxtrel-collation.so";
inline constexpr const char* kCompareName = "VoxtrelCompareForDisplay";

}  // namespace text
