#include "language/texts.h"

#include <new>

#include "language/language_table.h"

namespace language {

std::u16string_view Texts::operator()(const resources::Text& text) const {
  if (m_table == nullptr) {
    return text.GetEnglish();
  }
  const char16_t* const found = m_table->LookUp(text.GetKey(), nullptr);
  return found == nullptr ? std::u16string_view() : std::u16string_view(found);
}

Texts LoadTexts(platform::FileSystem& files, std::u16string_view path, platform::Clock& clock) {
  try {
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

}  // namespace language
