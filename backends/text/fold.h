#pragma once

namespace text {

/// The one character under which a character is compared where letter case counts for nothing. The
/// build chooses the table behind it.
[[nodiscard]] char32_t FoldCharacter(char32_t character);

}  // namespace text
