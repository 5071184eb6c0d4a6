#include "language/texts.h"

#include "language/language_table.h"

namespace language {

std::u16string_view Texts::operator()(const resources::Text& text) const {
  if (m_table == nullptr) {
    return text.GetEnglish();
  }
  const char16_t* const found = m_table->LookUp(text.GetKey(), nullptr);
  return found == nullptr ? std::u16string_view() : std::u16string_view(found);
}

}  // namespace language
