// What a page asks of any of its controls: text, enablement, font, check, place.

#include "backends/qt/control_names.h"
#include "backends/qt/fonts.h"
#include "backends/qt/qt_dialog.h"
#include "backends/qt/strings.h"
#include "platform/dialog.h"

namespace qt {

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
  // The library would give it to the next control, and the next Enter might press a button there
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
  // Not whether it can be used right now, while a box above it has the user.
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
  return control == nullptr ? platform::Rect() : platform::ToPixels(control->description.rect);
}

platform::Rect QtDialog::GetClientRect() const {
  return platform::ToPixels({0, 0, m_template.width, m_template.height});
}

}  // namespace qt
