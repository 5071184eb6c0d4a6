#include "framework/item_list.h"

#include <algorithm>
#include <compare>

#include "backends/text/collation.h"

namespace framework {

using resources::ControlKind;

bool ItemList::IsFor(ControlKind kind) {
  return kind == ControlKind::kComboBox || kind == ControlKind::kSortedComboBox ||
         kind == ControlKind::kEditableComboBox || kind == ControlKind::kListBox;
}

ItemList::ItemList(ControlKind kind, std::u16string_view field) : m_kind(kind) { SetField(field); }

// In a sorted box the new item comes after its equals, so people of the same name stay in the order
// in which they were added.
int ItemList::Add(std::u16string_view text) {
  auto at = m_items.end();
  if (m_kind == ControlKind::kSortedComboBox) {
    at = std::ranges::upper_bound(m_items, text, [](std::u16string_view a, std::u16string_view b) {
      return std::is_lt(text::CompareForDisplay(a, b));
    });
  }
  const int index = static_cast<int>(at - m_items.begin());
  m_items.insert(at, std::u16string(text));
  if (m_selection >= index) {
    m_selection = *m_selection + 1;
  }
  return index;
}

// The selection belongs to an item and not to a place: it moves with its item, and goes with it.
void ItemList::Delete(int index) {
  if (!HasItem(index)) {
    return;
  }
  m_items.erase(m_items.begin() + index);
  if (m_selection == index) {
    m_selection.reset();
  } else if (m_selection > index) {
    m_selection = *m_selection - 1;
  }
}

void ItemList::Reset() {
  m_items.clear();
  m_selection.reset();
}

void ItemList::Select(std::optional<int> index) {
  // An index that is not there selects none, as the classic controls take -1.
  m_selection = index && HasItem(*index) ? index : std::nullopt;
  if (m_selection) {
    SetField(m_items[static_cast<std::size_t>(*m_selection)]);
  }
}

void ItemList::SetField(std::u16string_view text) {
  if (m_kind == ControlKind::kEditableComboBox) {
    m_field = text;
  }
}

std::u16string ItemList::GetText(int index) const {
  return HasItem(index) ? m_items[static_cast<std::size_t>(index)] : std::u16string();
}

std::u16string ItemList::GetField() const {
  if (m_kind == ControlKind::kEditableComboBox || m_kind == ControlKind::kListBox) {
    return m_field;
  }
  // The field of a drop-down list is no text of its own: it shows the selection.
  return m_selection ? GetText(*m_selection) : std::u16string();
}

}  // namespace framework
