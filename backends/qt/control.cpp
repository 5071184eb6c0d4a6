#include "backends/qt/control.h"

#include <QCheckBox>
#include <QCompleter>
#include <QFontMetrics>
#include <QGroupBox>
#include <QPushButton>
#include <QStyle>
#include <QStyleOptionButton>
#include <QVariant>
#include <algorithm>
#include <array>

#include "backends/qt/look.h"
#include "backends/qt/strings.h"
#include "backends/qt/widgets.h"
#include "platform/dialog.h"

namespace qt {
namespace {

/// The distance between a button's edge and its text, in pixels of the desktop.
constexpr int kButtonMargin = 5;
constexpr double kSmallestLetters = 0.75;
/// How wide letters may be, in percent of their usual width, the widest first.
constexpr std::array<int, 5> kWidths{100, 95, 90, 85, 80};
/// The property that keeps the given font of a control while it shows a smaller one.
constexpr const char* kGivenFont = "givenFont";

// Texts come from language files, and their length is unknown. A label grows into the free room on
// its right. A button takes narrower letters of the same height, so that its text looks as large as
// that of the labels. If that does not suffice, all buttons take smaller letters, of one size, down
// to a limit. What is still too long is cut off, and the tool tip shows the whole text.

void FitLabel(Control& control, const QString& text) {
  const int wanted = control.label->fontMetrics().horizontalAdvance(text) + 1;
  const int given = control.room;
  if (control.description.kind == resources::ControlKind::kStatic) {
    // As narrow as the text, so that a click to the right of it reaches what lies under the label.
    control.label->resize(std::min(std::max(wanted, 1), given), control.label->height());
  }
  const QString hidden = wanted > given ? text : QString();
  control.label->setToolTip(AsToolTip(hidden));
  // Without a description a screen reader would read the tool tip with its marks.
  control.label->setAccessibleDescription(hidden);
}

void ShowLabel(Control& control, const QString& text) {
  // A label takes "&" for a mark only if it names another control.
  control.label->setText(control.label->buddy() == nullptr ? text : WithoutMnemonic(text));
  FitLabel(control, text);
}

[[nodiscard]] int RoomForText(const Control& control) {
  if (IsCheckBox(control)) {
    // The width that the style leaves next to the box, by the same sum that it does for a text.
    QStyleOptionButton option;
    option.initFrom(control.widget);
    option.text = QStringLiteral("x");
    const QStyle& style = *control.widget->style();
    const QSize taken =
        style.sizeFromContents(QStyle::CT_CheckBox, &option, QSize(0, 0), control.widget);
    return control.widget->width() - taken.width();
  }
  // The style would leave much more room at both ends, which narrow buttons do not have.
  return control.widget->width() - 2 * kButtonMargin;
}

/// Returns the font that the button was given, whatever font shows its text now.
[[nodiscard]] QFont GivenFont(const QAbstractButton& button) {
  const QVariant given = button.property(kGivenFont);
  return given.isValid() ? given.value<QFont>() : button.font();
}

/// Returns the font with the widest letters in which the text fits, or with the narrowest ones.
[[nodiscard]] QFont FittingWidth(QFont font, const QString& text, int room) {
  for (const int width : kWidths) {
    font.setStretch(width);
    if (QFontMetrics(font).horizontalAdvance(text) <= room) {
      break;
    }
  }
  return font;
}

void ShowButton(Control& control, const QString& text) {
  QAbstractButton& button = *control.button;
  QFont font = GivenFont(button);
  // The next text may be shorter, and is fitted from the given font again.
  button.setProperty(kGivenFont, font);
  if (control.letters > 0) {
    font.setPixelSize(control.letters);
  }
  const int room = RoomForText(control);
  font = FittingWidth(font, text, room);
  button.setFont(font);
  const QFontMetrics metrics(font);
  const bool fits = metrics.horizontalAdvance(text) <= room;
  button.setText(WithMnemonic(fits ? text : metrics.elidedText(text, Qt::ElideRight, room),
                              fits ? control.mnemonic : std::nullopt));
  const QString hidden = fits ? QString() : text;
  button.setToolTip(AsToolTip(hidden));
  button.setAccessibleName(hidden);
  // Without a description a screen reader would read the tool tip with its marks.
  button.setAccessibleDescription(hidden);
}

}  // namespace

bool IsPushButton(const Control& control) {
  return control.description.kind == resources::ControlKind::kPushButton ||
         control.description.kind == resources::ControlKind::kDefaultPushButton;
}

bool IsCheckBox(const Control& control) {
  return control.description.kind == resources::ControlKind::kCheckBox;
}

// The letters shrink pixel by pixel until the text fits or the limit is reached.
int FittingLetters(const Control& control) {
  QFont font = GivenFont(*control.button);
  const QString text = ToQString(control.text);
  const int smallest = static_cast<int>(font.pixelSize() * kSmallestLetters);
  // The letters become smaller only after they are as narrow as they may be.
  font.setStretch(kWidths.back());
  while (QFontMetrics(font).horizontalAdvance(text) > RoomForText(control) &&
         font.pixelSize() > smallest) {
    font.setPixelSize(font.pixelSize() - 1);
  }
  return font.pixelSize();
}

void ShowText(Control& control) {
  const QString text = ToQString(control.text);
  if (control.label != nullptr) {
    ShowLabel(control, text);
  } else if (IsPushButton(control) || IsCheckBox(control)) {
    ShowButton(control, text);
  } else if (control.button != nullptr) {
    control.button->setText(WithoutMnemonic(text));
  } else if (control.combo != nullptr && control.combo->isEditable()) {
    control.combo->setEditText(ToQString(control.items->GetField()));
  } else if (auto* group = dynamic_cast<QGroupBox*>(control.widget)) {
    group->setTitle(WithoutMnemonic(text));
  }
}

QString GetShownText(const Control& control) {
  return ToQString(control.items ? control.items->GetField() : control.text);
}

namespace {

using resources::ControlKind;
using resources::ControlTemplate;

/// A template gives the size of a combo box with its open list. A closed one is as high as a
/// button.
constexpr int kClosedComboUnits = 13;
constexpr int kFewestLines = 4;
/// Some capitals with an accent are higher than the line of their font, and a line may be higher
/// than its place. So that nothing is cut off, a label has this much more room above and below, in
/// pixels of the desktop.
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
    // The classic box lets the user type what is in no item. A completer would change it.
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
      // Enter presses the button that has the focus, and the default button otherwise.
      button->setAutoDefault(true);
      return SetButton(control, button);
    }
    case ControlKind::kCheckBox:
      return SetButton(control, new QCheckBox(&surface));
    case ControlKind::kPicture:
      return SetButton(control, new PictureButton(&surface, pictures, control.description.id));
    case ControlKind::kGroupBox:
      control.widget = new QGroupBox(&surface);
      // A frame is listed with the controls in it. Under them it leaves them the mouse.
      control.widget->lower();
      return;
  }
}

void Place(Control& control, Pictures& pictures) {
  QRect place = PlaceOf(control.description);
  if (control.combo != nullptr) {
    const int dropped = place.height();
    place.setHeight(ToDesktop(platform::ToPixels({0, 0, 0, kClosedComboUnits}).Height()));
    // The open list shows as many lines as fit into the height that the template gives it.
    const int line = std::max(1, control.combo->fontMetrics().height() + 2);
    control.combo->setMaxVisibleItems(std::max(kFewestLines, (dropped - place.height()) / line));
  } else if (control.description.kind == ControlKind::kPicture) {
    const QSizeF size = pictures.GetSize(control.description.id) * Scale();
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
  // A text with a key of the language file comes from the page, which sets it later.
  Control control{.description = description,
                  .text = std::u16string(resources::Say(description.text))};
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
