// Combo boxes and list boxes of a dialog. A framework::ItemList holds the items and the selection;
// the widget shows them. The widget's signals are blocked while the page changes the items, so what
// arrives as a signal is what the user did.

#include <QFontMetrics>
#include <QSignalBlocker>

#include "backends/qt/qt_dialog.h"
#include "backends/qt/scale.h"
#include "backends/qt/strings.h"

namespace qt {

using platform::CommandEvent;

namespace {

/// Returns -1 if no item is shown as selected.
[[nodiscard]] int ShownRow(const Control& control) {
  if (control.combo != nullptr) {
    return control.combo->currentIndex();
  }
  const auto selected = control.list->selectedItems();
  return selected.isEmpty() ? -1 : control.list->row(selected.front());
}

[[nodiscard]] int SelectedRow(const Control& control) {
  return control.items->GetSelection().value_or(-1);
}

void ShowSelection(const Control& control) {
  const int row = SelectedRow(control);
  if (control.combo != nullptr) {
    control.combo->setCurrentIndex(row);
    const QString field = ToQString(control.items->GetField());
    if (control.combo->isEditable() && control.combo->currentText() != field) {
      control.combo->setEditText(field);
    }
    return;
  }
  control.list->setCurrentRow(row);
  if (row < 0) {
    control.list->clearSelection();
  }
}

/// Changes the items of the widget, which selects another one of its own accord now and then.
template <typename Change>
void ChangeWidget(const Control& control, Change change) {
  const QSignalBlocker comboBlocker(control.combo);
  const QSignalBlocker listBlocker(control.list);
  change();
  const bool isFieldOther =
      control.combo != nullptr && ToText(control.combo->currentText()) != control.items->GetField();
  if (ShownRow(control) != SelectedRow(control) || isFieldOther) {
    ShowSelection(control);
  }
}

}  // namespace

void QtDialog::Hear(Control& control) {
  // The items first: when the page hears of a choice, it finds it selected.
  const auto select = [&control] {
    const int row = ShownRow(control);
    control.items->Select(row < 0 ? std::nullopt : std::optional(row));
  };
  const int id = control.description.id;
  const auto tellChoice = [this, id] { TellUsersCommand(id, CommandEvent::kSelectionChange); };
  if (ComboBox* combo = control.combo) {
    QObject::connect(combo, &QComboBox::currentIndexChanged, combo, select);
    QObject::connect(combo, &QComboBox::editTextChanged, combo,
                     [&control](const QString& typed) { control.items->SetField(ToText(typed)); });
    QObject::connect(combo, &QComboBox::activated, combo, tellChoice);
  } else if (ListBox* list = control.list) {
    QObject::connect(list, &QListWidget::itemSelectionChanged, list, select);
    QObject::connect(list, &QListWidget::itemSelectionChanged, list, tellChoice);
  } else if (QAbstractButton* button = control.button) {
    QObject::connect(button, &QAbstractButton::clicked, button,
                     [this, id] { TellUsersCommand(id, CommandEvent::kClick); });
  }
}

int QtDialog::AddItem(int id, std::u16string_view text) {
  Control* control = FindList(id);
  if (control == nullptr) {
    return -1;
  }
  const int place = control->items->Add(text);
  ChangeWidget(*control, [&] {
    if (control->combo != nullptr) {
      control->combo->insertItem(place, ToQString(text));
    } else {
      control->list->insertItem(place, ToQString(text));
    }
  });
  // A list that is filled before it is shown stands at its top.
  if (control->list != nullptr && control->list->isVisible()) {
    control->list->scrollToItem(control->list->item(place));
  }
  Rename();
  return place;
}

void QtDialog::DeleteItem(int id, int index) {
  Control* control = FindList(id);
  if (control == nullptr || !control->items->HasItem(index)) {
    return;
  }
  control->items->Delete(index);
  ChangeWidget(*control, [&] {
    if (control->combo != nullptr) {
      control->combo->removeItem(index);
    } else {
      const std::unique_ptr<QListWidgetItem> gone(control->list->takeItem(index));
    }
  });
  Rename();
}

void QtDialog::ResetItems(int id) {
  Control* control = FindList(id);
  if (control == nullptr) {
    return;
  }
  control->items->Reset();
  ChangeWidget(*control, [&] {
    if (control->combo != nullptr) {
      control->combo->clear();
    } else {
      control->list->clear();
    }
  });
  Rename();
}

int QtDialog::GetItemCount(int id) const {
  const Control* control = FindList(id);
  return control == nullptr ? 0 : control->items->GetCount();
}

std::u16string QtDialog::GetItemText(int id, int index) const {
  const Control* control = FindList(id);
  return control == nullptr ? std::u16string() : control->items->GetText(index);
}

std::optional<int> QtDialog::GetSelection(int id) const {
  const Control* control = FindList(id);
  return control == nullptr ? std::nullopt : control->items->GetSelection();
}

void QtDialog::SetSelection(int id, std::optional<int> index) {
  if (Control* control = FindList(id)) {
    control->items->Select(index);
    {
      const QSignalBlocker comboBlocker(control->combo);
      const QSignalBlocker listBlocker(control->list);
      ShowSelection(*control);
    }
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
