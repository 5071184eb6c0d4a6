#pragma once

#include <QString>
#include <optional>
#include <vector>

namespace qt {

/// For each text the place of the letter that, with Alt, presses its button: initials of words
/// first, no letter twice. None where no letter of the Latin alphabet is left in the text.
[[nodiscard]] std::vector<std::optional<qsizetype>> ChooseMnemonics(
    const std::vector<QString>& texts);

/// The text as a button has to be given it, with the mnemonic marked.
[[nodiscard]] QString WithMnemonic(const QString& text, std::optional<qsizetype> place);

}  // namespace qt
