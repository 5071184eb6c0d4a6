#include "resources/translations.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace resources {
namespace {

/// A text by its place in the words of its table. A pointer would have to be filled in when a
/// program starts, which costs it all the pages of the tables, and most programs show few of the
/// texts.
struct Words {
  std::uint32_t begin;
  std::uint32_t length;
};

struct Translation {
  Words english;
  Words text;
};

struct Table {
  const char16_t* words;
  std::span<const Translation> entries;  ///< Sorted by the English.
};

// kTranslations: a table for each of kLanguages.
#include "resources/translation_tables.inc"

static_assert(std::size(kTranslations) == kLanguages.size());

constexpr std::size_t kEnglish = kLanguages.size();

std::u16string_view ToText(const Table& table, const Words& words) {
  return {table.words + words.begin, words.length};
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
  const Table& table = kTranslations.at(language);
  const auto found = std::ranges::lower_bound(
      table.entries, english, {},
      [&table](const Translation& entry) { return ToText(table, entry.english); });
  return found != table.entries.end() && ToText(table, found->english) == english
             ? ToText(table, found->text)
             : english;
}

}  // namespace resources
