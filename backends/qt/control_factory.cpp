#include "backends/qt/control_factory.h"

#include <QCheckBox>
#include <QCompleter>
#include <QGroupBox>
#include <QPushButton>
#include <algorithm>

#include "backends/qt/picture_button.h"
#include "backends/qt/scale.h"
#include "backends/qt/strings.h"
#include "platform/dialog.h"

namespace qt {
namespace {

using resources::ControlKind;
using resources::ControlTemplate;

/// A template gives a combo box with its list dropped down; closed it is as high as a button.
constexpr int kClosedComboUnits = 13;
constexpr int kFewestLines = 4;
/// Some capitals are higher than the line of their font once they carry an accent, and a line may
/// be higher than its place, which would cut it: a label has this much more room above and below,
/// in pixels of the desktop.
constexpr int kAccentRoom = 4;

[[nodiscard]] QRect PlaceOf(const ControlTemplate& description) {
  return ToDesktop(platform::ToPixels(description.rect));
}

void MakeLabel(Control& control, QWidget& surface) {
  control.label = new QLabel(&surface);
  control.label->setTextFormat(Qt::PlainText);
  const bool isCentered = control.description.kind == ControlKind::kCenteredStatic;
  control.label->setAlignment((isCentered ? Qt::AlignHCenter : Qt::AlignLeft) | Qt::AlignTop);
  control.widget = control.label;
}

void MakeCombo(Control& control, QWidget& surface) {
  control.combo = new ComboBox(&surface);
  control.widget = control.combo;
  if (control.description.kind == ControlKind::kEditableComboBox) {
    control.combo->setEditable(true);
    control.combo->setCompleter(nullptr);
  }
}

void MakeList(Control& control, QWidget& surface) {
  control.list = new ListBox(&surface);
  control.widget = control.list;
}

void SetButton(Control& control, QAbstractButton* button) {
  control.button = button;
  control.widget = button;
}

void MakeWidget(Control& control, QWidget& surface, Pictures& pictures) {
  switch (control.description.kind) {
    case ControlKind::kStatic:
    case ControlKind::kCenteredStatic:
      return MakeLabel(control, surface);
    case ControlKind::kComboBox:
    case ControlKind::kSortedComboBox:
    case ControlKind::kEditableComboBox:
      return MakeCombo(control, surface);
    case ControlKind::kListBox:
      return MakeList(control, surface);
    case ControlKind::kPushButton:
    case ControlKind::kDefaultPushButton: {
      auto* button = new QPushButton(&surface);
      button->setAutoDefault(true);
      return SetButton(control, button);
    }
    case ControlKind::kCheckBox:
      return SetButton(control, new QCheckBox(&surface));
    case ControlKind::kPicture:
      return SetButton(control, new PictureButton(&surface, pictures, control.description.id));
    case ControlKind::kGroupBox:
      control.widget = new QGroupBox(&surface);
      control.widget->lower();
      return;
  }
}

void Place(Control& control, Pictures& pictures) {
  QRect place = PlaceOf(control.description);
  if (control.combo != nullptr) {
    const int dropped = place.height();
    place.setHeight(ToDesktop(platform::ToPixels({0, 0, 0, kClosedComboUnits}).Height()));
    const int line = std::max(1, control.combo->fontMetrics().height() + 2);
    control.combo->setMaxVisibleItems(std::max(kFewestLines, (dropped - place.height()) / line));
  } else if (control.description.kind == ControlKind::kPicture) {
    const QSizeF size = pictures.GetSize(control.description.id) * kScale;
    place.setSize(size.isEmpty() ? place.size() : size.toSize());
  }
  control.room = place.width();
  if (control.label != nullptr) {
    control.label->setContentsMargins(0, kAccentRoom, 0, 0);
    place.adjust(0, -kAccentRoom, 0, kAccentRoom);
  }
  control.widget->setGeometry(place);
}

}  // namespace

Control MakeControl(const ControlTemplate& description, QWidget& surface, Pictures& pictures) {
  Control control{.description = description, .text = std::u16string(description.text)};
  if (framework::ItemList::IsFor(description.kind)) {
    control.items.emplace(description.kind, description.text);
  }
  MakeWidget(control, surface, pictures);
  Place(control, pictures);
  if (description.id != resources::kNoControlId) {
    control.widget->setObjectName(QString::number(description.id));
  }
  control.widget->setEnabled(description.isEnabled);
  control.widget->setVisible(description.isVisible);
  return control;
}

}  // namespace qt
