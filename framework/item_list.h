#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "resources/dialog_template.h"

namespace framework {

/// The items of a combo box or a list box, the selected item, and the text in a combo box's field.
///
/// Every presentation keeps one of these for each such control and only shows it, so that a page
/// meets the same order and the same selection everywhere. A widget of a library would not do: it
/// selects items of its own accord. The rules are those of the classic controls:
/// - Indices are 0-based. At most one item is selected. Adding an item selects nothing.
/// - A sorted combo box puts a new item in the order of text::CompareForDisplay, after the items
///   that are equal to it. The other kinds put it at the end.
/// - The selection belongs to its item and not to its index. If an item is added or deleted before
///   the selected one, the index of the selection changes. If the selected item itself is deleted,
///   no item is selected, and no neighbour takes its place.
/// - The field of a drop-down list shows the selected item and is empty if none is selected. The
///   field of an editable combo box is a text of its own: selecting an item puts the item's text
///   there, and nothing else that happens to the items changes it.
class ItemList {
 public:
  /// Returns whether controls of this kind have items.
  [[nodiscard]] static bool IsFor(resources::ControlKind kind);

  /// `field` is the first text in the field of an editable combo box.
  ItemList(resources::ControlKind kind, std::u16string_view field);

  /// Adds an item and returns its index.
  int Add(std::u16string_view text);
  /// Does nothing if there is no such item.
  void Delete(int index);
  /// Deletes all items.
  void Reset();

  /// Selects an item. Selects none if there is no such item.
  void Select(std::optional<int> index);
  /// Sets the text in the field of an editable combo box. Does nothing for the other kinds.
  void SetField(std::u16string_view text);

  [[nodiscard]] bool HasItem(int index) const { return index >= 0 && index < GetCount(); }
  [[nodiscard]] int GetCount() const { return static_cast<int>(m_items.size()); }
  [[nodiscard]] const std::vector<std::u16string>& GetItems() const { return m_items; }
  /// Returns an empty text if there is no such item.
  [[nodiscard]] std::u16string GetText(int index) const;
  [[nodiscard]] std::optional<int> GetSelection() const { return m_selection; }
  [[nodiscard]] std::u16string GetField() const;

 private:
  resources::ControlKind m_kind;
  std::vector<std::u16string> m_items;
  std::optional<int> m_selection;
  std::u16string m_field;  ///< Of an editable combo box.
};

}  // namespace framework
