// What a page asks of the controls of a dialog. Of a combo box or a list box, a framework::ItemList
// holds the items and the selection, and the widget shows them. The widget's signals are blocked
// while the page changes the items, so every signal that arrives comes from the user.

#include "backends/qt/qt_dialog.h"

#include <QFontMetrics>
#include <QSignalBlocker>
#include <algorithm>

#include "backends/qt/control_names.h"
#include "backends/qt/look.h"
#include "backends/qt/strings.h"
#include "platform/dialog.h"

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
  // A list keeps a current row for the keyboard even when no row is selected. Both are set.
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

void QtDialog::SetText(int id, std::u16string_view text) {
  CallHere([id, text = std::u16string(text)](QtDialog& dialog) { dialog.ChangeText(id, text); });
}

void QtDialog::ChangeText(int id, const std::u16string& text) {
  if (Control* control = Find(id)) {
    if (control->items) {
      control->items->SetField(text);
    } else {
      control->text = text;
    }
    ShowText(*control);
    if (IsPushButton(*control) || IsCheckBox(*control)) {
      // All buttons again: the sizes of their letters and their mnemonics depend on each other.
      ShowButtons(m_controls);
    }
    Rename();
  }
}

std::u16string QtDialog::GetText(int id) const {
  const Control* control = Find(id);
  if (control == nullptr) {
    return {};
  }
  return control->items ? control->items->GetField() : control->text;
}

void QtDialog::Enable(int id, bool isEnabled) {
  if (Control* control = Find(id)) {
    if (!isEnabled) {
      TakeFocusFrom(*control);
    }
    control->widget->setEnabled(isEnabled);
  }
}

void QtDialog::TakeFocusFrom(const Control& leaving) {
  const QWidget* focused = m_surface->window()->focusWidget();
  if (focused != leaving.widget && !leaving.widget->isAncestorOf(focused)) {
    return;
  }
  // The library would give the focus to the next control. There the next Enter might press a button
  // that does far more than the one pressed before.
  const Control* heir = nullptr;
  for (const Control& control : m_controls) {
    const bool isFit = &control != &leaving && control.button == nullptr &&
                       control.description.isVisible &&
                       control.widget->focusPolicy() != Qt::NoFocus &&
                       control.widget->isEnabledTo(m_surface.get());
    if (isFit && (heir == nullptr || (heir->list == nullptr && control.list != nullptr))) {
      heir = &control;
    }
  }
  if (heir == nullptr) {
    m_surface->window()->focusWidget()->clearFocus();
  } else {
    heir->widget->setFocus();
  }
}

bool QtDialog::IsEnabled(int id) const {
  const Control* control = Find(id);
  // This asks about the control alone. While a message box is open, the whole dialog is disabled.
  return control != nullptr && control->widget->isEnabledTo(m_surface.get());
}

void QtDialog::SetFont(int id, const platform::Font& font) {
  if (Control* control = Find(id)) {
    control->widget->setFont(MakeFont(font));
    ShowText(*control);
  }
}

void QtDialog::SetCheck(int id, bool isChecked) {
  Control* control = Find(id);
  if (control != nullptr && control->button != nullptr) {
    control->button->setChecked(isChecked);
  }
}

bool QtDialog::IsChecked(int id) const {
  const Control* control = Find(id);
  return control != nullptr && control->button != nullptr && control->button->isChecked();
}

platform::Rect QtDialog::GetControlRect(int id) const {
  const Control* control = Find(id);
  // From the template and not from the widget: pages compute in pixels of the device, which must
  // come out alike at every scale.
  return control == nullptr ? platform::Rect() : platform::ToPixels(control->description.rect);
}

platform::Rect QtDialog::GetClientRect() const {
  return platform::ToPixels({0, 0, m_template.width, m_template.height});
}

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
    // Not the change of the index but the user's choice: it comes also if the same item is chosen
    // again, and pages read the contact again then.
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
  // A list that is filled before it is shown stays at its top.
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
      // The list gives up the item, which somebody has to delete.
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

void QtDialog::CreateProgressBar(int id, const platform::ProgressBar& bar) {
  auto widget = std::make_unique<QProgressBar>(m_surface.get());
  widget->setObjectName(QString::number(id));
  // The bar shows the progress of the command that is being done, or of the dialog itself.
  const Control* command = Find(m_command);
  widget->setAccessibleName(command == nullptr ? ToQString(m_template.caption)
                                               : GetShownText(*command));
  widget->setTextVisible(false);
  // The library shows an empty range as a bar that runs to and fro.
  widget->setRange(bar.minimum, std::max(bar.maximum, bar.minimum + 1));
  widget->setValue(bar.minimum);
  widget->setGeometry(ToDesktop(bar.rect));
  widget->show();
  m_bars[id] = {std::move(widget), bar.step};
}

void QtDialog::StepProgress(int id) {
  CallHere([id](QtDialog& dialog) {
    const auto found = dialog.m_bars.find(id);
    if (found != dialog.m_bars.end()) {
      QProgressBar& widget = *found->second.widget;
      widget.setValue(std::min(widget.value() + found->second.step, widget.maximum()));
    }
  });
}

void QtDialog::DestroyProgressBar(int id) { m_bars.erase(id); }

}  // namespace qt
