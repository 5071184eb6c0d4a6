#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "language/texts.h"

namespace language {

/// `format` with its first "%d" replaced by the decimal number. Nothing else in it is interpreted:
/// any other percent sign, a second "%d" included, is shown as it stands.
[[nodiscard]] std::u16string FormatNumber(std::u16string_view format, std::int32_t number);

/// Decimal text, with a sign only where the number is negative.
[[nodiscard]] std::u16string Decimal(std::int32_t number);

/// The label under the tag list. A language file gives the words alone, which are joined to the
/// count with one blank.
[[nodiscard]] std::u16string CountLabel(const Texts& texts, std::int32_t tagCount);

/// The same label as the deletion of one tag leaves it: English, whatever language file is loaded.
[[nodiscard]] std::u16string EnglishCountLabel(std::int32_t tagCount);

/// The refusal of a tag beyond the last one that there is room for. The number follows the text
/// directly.
[[nodiscard]] std::u16string TagLimitMessage(const Texts& texts, std::int32_t limit);

/// What is said where there is no recording to test: two texts with an empty line between them.
[[nodiscard]] std::u16string NoVoiceTagsMessage(const Texts& texts);

}  // namespace language
