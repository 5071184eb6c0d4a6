// Combo boxes and list boxes of a dialog: their items and what is selected.

#include <QFontMetrics>
#include <QSignalBlocker>
#include <compare>

#include "backends/qt/qt_dialog.h"
#include "backends/qt/scale.h"
#include "backends/qt/strings.h"
#include "backends/text/collation.h"

namespace qt {
namespace {

using resources::ControlKind;

[[nodiscard]] int CountItems(const Control& control) {
  if (control.combo != nullptr) {
    return control.combo->count();
  }
  return control.list == nullptr ? 0 : control.list->count();
}

[[nodiscard]] std::optional<int> SelectionOf(const Control& control) {
  int row = -1;
  if (control.combo != nullptr) {
    row = control.combo->currentIndex();
  } else if (control.list != nullptr && !control.list->selectedItems().isEmpty()) {
    row = control.list->row(control.list->selectedItems().front());
  }
  return row < 0 ? std::nullopt : std::optional(row);
}

void Select(const Control& control, std::optional<int> index) {
  const int row = index && *index >= 0 && *index < CountItems(control) ? *index : -1;
  if (control.combo != nullptr) {
    // Only a choice writes into the field of an editable box; that none is left changes no text.
    const QString typed = control.combo->currentText();
    control.combo->setCurrentIndex(row);
    if (row < 0 && control.combo->isEditable()) {
      control.combo->setEditText(typed);
    }
  } else if (control.list != nullptr) {
    const QSignalBlocker blocker(control.list);
    control.list->setCurrentRow(row);
    if (row < 0) {
      control.list->clearSelection();
    }
  }
}

/// Changes the items without letting the widget choose one by itself, as it likes to.
template <typename Change>
void ChangeItems(const Control& control, Change change) {
  const QSignalBlocker comboBlocker(control.combo);
  const QSignalBlocker listBlocker(control.list);
  const bool isEditable = control.combo != nullptr && control.combo->isEditable();
  const QString typed = isEditable ? control.combo->currentText() : QString();
  const std::optional<int> selection = change(SelectionOf(control));
  if (selection != SelectionOf(control)) {
    Select(control, selection);
  }
  if (isEditable && control.combo->currentText() != typed) {
    control.combo->setEditText(typed);
  }
}

[[nodiscard]] QString ItemText(const Control& control, int index) {
  return control.combo != nullptr ? control.combo->itemText(index)
                                  : control.list->item(index)->text();
}

/// Behind those that it is equal to.
[[nodiscard]] int SortedPlace(const Control& control, std::u16string_view text) {
  int place = 0;
  while (place < CountItems(control) &&
         !std::is_lt(text::CompareForDisplay(text, ToText(ItemText(control, place))))) {
    ++place;
  }
  return place;
}

}  // namespace

int QtDialog::AddItem(int id, std::u16string_view text) {
  Control* control = Find(id);
  if (control == nullptr || (control->combo == nullptr && control->list == nullptr)) {
    return -1;
  }
  const bool isSorted = control->description.kind == ControlKind::kSortedComboBox;
  const int place = isSorted ? SortedPlace(*control, text) : CountItems(*control);
  ChangeItems(*control, [&](std::optional<int> selection) {
    if (control->combo != nullptr) {
      control->combo->insertItem(place, ToQString(text));
    } else {
      control->list->insertItem(place, ToQString(text));
    }
    return selection && *selection >= place ? std::optional(*selection + 1) : selection;
  });
  // A list that is filled before it is shown stands at its top.
  if (control->list != nullptr && control->list->isVisible()) {
    control->list->scrollToItem(control->list->item(place));
  }
  Rename();
  return place;
}

void QtDialog::DeleteItem(int id, int index) {
  Control* control = Find(id);
  if (control == nullptr || index < 0 || index >= CountItems(*control)) {
    return;
  }
  ChangeItems(*control, [&](std::optional<int> selection) {
    if (control->combo != nullptr) {
      control->combo->removeItem(index);
    } else {
      const std::unique_ptr<QListWidgetItem> gone(control->list->takeItem(index));
    }
    if (selection == index) {
      return std::optional<int>();
    }
    return selection > index ? std::optional(*selection - 1) : selection;
  });
  Rename();
}

void QtDialog::ResetItems(int id) {
  Control* control = Find(id);
  if (control == nullptr) {
    return;
  }
  ChangeItems(*control, [&](std::optional<int> /*selection*/) {
    if (control->combo != nullptr) {
      control->combo->clear();
    } else if (control->list != nullptr) {
      control->list->clear();
    }
    return std::optional<int>();
  });
  Rename();
}

int QtDialog::GetItemCount(int id) const {
  const Control* control = Find(id);
  return control == nullptr ? 0 : CountItems(*control);
}

std::u16string QtDialog::GetItemText(int id, int index) const {
  const Control* control = Find(id);
  return control == nullptr || index < 0 || index >= CountItems(*control)
             ? std::u16string()
             : ToText(ItemText(*control, index));
}

std::optional<int> QtDialog::GetSelection(int id) const {
  const Control* control = Find(id);
  return control == nullptr ? std::nullopt : SelectionOf(*control);
}

void QtDialog::SetSelection(int id, std::optional<int> index) {
  if (const Control* control = Find(id)) {
    Select(*control, index);
    Rename();
  }
}

void QtDialog::SetHorizontalExtent(int id, int width) {
  Control* control = Find(id);
  if (control != nullptr && control->list != nullptr) {
    control->horizontalExtent = width;
    control->list->SetExtent(ToDesktop(width));
  }
}

int QtDialog::GetHorizontalExtent(int id) const {
  const Control* control = Find(id);
  return control == nullptr ? 0 : control->horizontalExtent;
}

int QtDialog::GetTextWidth(int id, std::u16string_view text) const {
  const Control* control = Find(id);
  const QFont& font = control == nullptr ? m_surface->font() : control->widget->font();
  return ToDevice(QFontMetricsF(font).horizontalAdvance(ToQString(text)));
}

}  // namespace qt
