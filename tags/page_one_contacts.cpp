// The Learning page and the contacts: what the picker shows in the two combo boxes.

#include "resources/dialogs.h"
#include "tags/page_one.h"

namespace tags {

void Page_one::AddContact(std::u16string_view name) {
  GetWindow().AddItem(resources::kContactComboId, name);
}

void Page_one::SelectFirstContact() { GetWindow().SetSelection(resources::kContactComboId, 0); }

void Page_one::AddNumber(std::u16string_view text) {
  GetWindow().AddItem(resources::kNumberComboId, text);
}

void Page_one::RemoveNumbers() { GetWindow().ResetItems(resources::kNumberComboId); }

void Page_one::SelectFirstNumber() { GetWindow().SetSelection(resources::kNumberComboId, 0); }

std::u16string Page_one::GetFirstNumber() {
  return GetWindow().GetItemText(resources::kNumberComboId, 0);
}

void Page_one::Report(const ContactMessage& message) {
  m_platform.ui.ShowMessage(ToBox(message, m_texts));
}

void Page_one::OnSelchangeComboName() {
  if (const auto selection = GetWindow().GetSelection(resources::kContactComboId)) {
    m_picker.ListNumbers(*selection);
  }
}

void Page_one::OnSelchangeComboNumber() {
  if (const auto selection = GetWindow().GetSelection(resources::kNumberComboId)) {
    m_picker.ChooseNumber(GetWindow().GetItemText(resources::kNumberComboId, *selection));
  }
}

}  // namespace tags
