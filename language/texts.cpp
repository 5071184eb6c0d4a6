#include "language/texts.h"

#include <new>

#include "language/language_table.h"

namespace language {
namespace {

constexpr std::u16string_view kNumberPlaceholder = u"%d";

}  // namespace

std::u16string_view Texts::operator()(const resources::Text& text) const {
  if (m_table == nullptr) {
    return text.GetEnglish();
  }
  const char16_t* const found = m_table->LookUp(text.GetKey(), nullptr);
  // A key without a line shows nothing, on purpose: so a broken file is noticed at once.
  return found == nullptr ? std::u16string_view() : std::u16string_view(found);
}

Texts LoadTexts(platform::FileSystem& files, std::u16string_view path, platform::Clock& clock) {
  try {
    // No file, no table: the pages then speak English. A file that is there but cannot be read
    // gives an empty table, and every text is empty.
    if (!files.Find(path)) {
      return {};
    }
    LanguageTable& table = LanguageTable::GetInstance();
    table.Load(files, path, clock);
    return Texts(&table);
  } catch (const std::bad_alloc&) {
    return {};
  }
}

std::u16string FormatNumber(std::u16string_view format, std::int32_t number) {
  std::u16string result(format);
  const std::size_t at = result.find(kNumberPlaceholder);
  if (at != std::u16string::npos) {
    result.replace(at, kNumberPlaceholder.size(), Decimal(number));
  }
  return result;
}

std::u16string Decimal(std::int32_t number) {
  const std::string digits = std::to_string(number);
  return {digits.begin(), digits.end()};
}

std::u16string CountLabel(const Texts& texts, std::int32_t tagCount) {
  if (!texts.IsLanguageFileLoaded()) {
    return EnglishCountLabel(tagCount);
  }
  std::u16string label(texts(resources::kLearnedCommands));
  label += u' ';
  label += Decimal(tagCount);
  return label;
}

std::u16string EnglishCountLabel(std::int32_t tagCount) {
  return FormatNumber(resources::kLearnedCommands.GetEnglish(), tagCount);
}

std::u16string TagLimitMessage(const Texts& texts, std::int32_t limit) {
  std::u16string message(texts(resources::kTagLimit));
  message += Decimal(limit);
  return message;
}

std::u16string NoVoiceTagsMessage(const Texts& texts) {
  std::u16string message(texts(resources::kNoVoiceTags));
  message += u"\n\n";
  message += texts(resources::kHowToRecord);
  return message;
}

}  // namespace language
