#include "resources/translations.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace resources {
namespace {

/// A text by its place in kWords. A pointer would have to be filled in when a program starts, which
/// costs it all the pages of the tables, and most programs show few of the texts.
struct Words {
  std::uint32_t begin;
  std::uint32_t length;
};

struct Translation {
  Words english;
  Words text;
};

// The tables: kWords, all texts, and kTranslations, one table for each of kLanguages, each sorted
// by the English.
#include "resources/translation_tables.inc"

static_assert(std::size(kTranslations) == kLanguages.size());

constexpr std::size_t kEnglish = kLanguages.size();

std::u16string_view ToText(const Words& words) {
  return {kWords + words.begin, words.length};
}

std::atomic<std::size_t> chosen = kEnglish;

bool IsLetter(char character) {
  return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

}  // namespace

std::string_view FindLanguage(std::string_view locale) {
  const auto end = std::ranges::find_if_not(locale, IsLetter);
  const std::string_view language(locale.begin(), end);
  if (language == "zh") {
    // What is written in traditional characters is another language to its readers.
    const bool isTraditional =
        locale.find("TW") != locale.npos || locale.find("HK") != locale.npos ||
        locale.find("MO") != locale.npos || locale.find("Hant") != locale.npos;
    return isTraditional ? std::string_view() : kLanguages.back();
  }
  const auto* const found = std::ranges::find(kLanguages, language);
  return found == kLanguages.end() ? std::string_view() : *found;
}

void ChooseLanguage(std::string_view language) {
  chosen = static_cast<std::size_t>(std::ranges::find(kLanguages, language) - kLanguages.begin());
}

std::u16string_view Say(std::u16string_view english) {
  const std::size_t language = chosen;
  if (language == kEnglish) {
    return english;
  }
  const std::span<const Translation> table = kTranslations.at(language);
  const auto found = std::ranges::lower_bound(
      table, english, {}, [](const Translation& entry) { return ToText(entry.english); });
  return found != table.end() && ToText(found->english) == english ? ToText(found->text) : english;
}

}  // namespace resources
