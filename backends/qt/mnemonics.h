#pragma once

#include <QString>
#include <optional>
#include <vector>

namespace qt {

/// For each text the place of the letter that, with Alt, presses its button: initials of words
/// first, no letter twice. None where the text has no letter left that a keyboard has a key for;
/// a language without an alphabet names a letter in brackets behind its text, as is usual there.
[[nodiscard]] std::vector<std::optional<qsizetype>> ChooseMnemonics(
    const std::vector<QString>& texts);

/// The text as a button has to be given it, with the mnemonic marked.
[[nodiscard]] QString WithMnemonic(const QString& text, std::optional<qsizetype> place);

}  // namespace qt
