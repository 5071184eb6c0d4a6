#include "host/cli/contact_lists.h"

#include <algorithm>
#include <compare>

#include "backends/text/collation.h"

namespace cli {

void ContactLists::AddNumber(std::u16string_view text) {
  const auto place = std::upper_bound(m_numbers.begin(), m_numbers.end(), text,
                                      [](std::u16string_view a, std::u16string_view b) {
                                        return std::is_lt(text::CompareForDisplay(a, b));
                                      });
  m_numbers.emplace(place, text);
}

std::u16string ContactLists::GetFirstNumber() {
  return m_numbers.empty() ? std::u16string() : m_numbers.front();
}

void ContactLists::Report(const tags::ContactMessage& message) {
  m_ui.ShowMessage(tags::ToBox(message, m_texts));
}

bool ListContacts(platform::ContactsStore& store, platform::Ui& ui, const language::Texts& texts,
                  std::vector<ListedContact>& listed) {
  ContactLists lists(ui, texts);
  tags::ContactPicker picker(store, lists);
  if (!picker.Load()) {
    return false;
  }
  for (std::int32_t i = 0; i < picker.GetContacts().GetCount(); ++i) {
    const tags::ContactRecord& record = *picker.GetContacts().Find(i);
    picker.ListNumbers(i);
    listed.push_back({i + 1, record.oid, std::u16string(record.GetName()), lists.GetNumbers()});
  }
  return true;
}

}  // namespace cli
