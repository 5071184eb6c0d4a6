#pragma once

#include <array>
#include <string_view>

namespace resources {

// Our own texts in other languages: those that no language file of the device has a key for. They
// follow the language of the user's desktop. The translations are kept as gettext catalogues
// (translations/*.po), and tools/translations.py makes tables of them.

/// The languages besides English, by the names that the language files have.
inline constexpr std::array<std::string_view, 5> kLanguages = {"de", "es", "fr", "ru", "zh-Hans"};

/// Returns the one of kLanguages that a locale asks for, such as "de" for "de_AT.UTF-8" and
/// "zh-Hans" for "zh_CN". Returns an empty text if there is none.
[[nodiscard]] std::string_view FindLanguage(std::string_view locale);

/// Sets the language of Say for the process: one of kLanguages. Any other name means English.
/// Called before there is a second thread that shows texts.
void ChooseLanguage(std::string_view language);

/// Returns an English text of the headers named *_strings.h in the chosen language. Returns the
/// text itself if that has no translation. The result is as lasting as the text. May be called from
/// any thread.
[[nodiscard]] std::u16string_view Say(std::u16string_view english);

}  // namespace resources
