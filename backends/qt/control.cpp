#include "backends/qt/control.h"

#include <QFontMetrics>
#include <QGroupBox>
#include <QStyle>
#include <QStyleOptionButton>
#include <QVariant>
#include <algorithm>

#include "backends/qt/mnemonics.h"
#include "backends/qt/strings.h"

namespace qt {
namespace {

/// Between a button's edge and its text, in pixels of the desktop.
constexpr int kButtonMargin = 6;
constexpr double kSmallestLetters = 0.75;
/// Keeps the font that a control was given while it shows a smaller one.
constexpr const char* kGivenFont = "givenFont";

void FitLabel(Control& control, const QString& text) {
  const int wanted = control.label->fontMetrics().horizontalAdvance(text) + 1;
  const int given = control.room;
  if (control.description.kind == resources::ControlKind::kStatic) {
    control.label->resize(std::min(std::max(wanted, 1), given), control.label->height());
  }
  const QString hidden = wanted > given ? text : QString();
  control.label->setToolTip(AsToolTip(hidden));
  // Else a screen reader would be given the tool tip with its marks.
  control.label->setAccessibleDescription(hidden);
}

void ShowLabel(Control& control, const QString& text) {
  // A label takes "&" for a mark only where it names another control.
  control.label->setText(control.label->buddy() == nullptr ? text : WithoutMnemonic(text));
  FitLabel(control, text);
}

[[nodiscard]] int RoomForText(const Control& control) {
  if (IsCheckBox(control)) {
    // What the style leaves of the width beside the box, as it reckons the width for a text.
    QStyleOptionButton option;
    option.initFrom(control.widget);
    option.text = QStringLiteral("x");
    const QStyle& style = *control.widget->style();
    const QSize taken =
        style.sizeFromContents(QStyle::CT_CheckBox, &option, QSize(0, 0), control.widget);
    return control.widget->width() - taken.width();
  }
  return control.widget->width() - 2 * kButtonMargin;
}

/// As the button was given it, whatever it shows its text in now.
[[nodiscard]] QFont GivenFont(const QAbstractButton& button) {
  const QVariant given = button.property(kGivenFont);
  return given.isValid() ? given.value<QFont>() : button.font();
}

void ShowButton(Control& control, const QString& text) {
  QAbstractButton& button = *control.button;
  QFont font = GivenFont(button);
  button.setProperty(kGivenFont, font);
  if (control.letters > 0) {
    font.setPixelSize(control.letters);
  }
  button.setFont(font);
  const QFontMetrics metrics(font);
  const int room = RoomForText(control);
  const bool fits = metrics.horizontalAdvance(text) <= room;
  button.setText(WithMnemonic(fits ? text : metrics.elidedText(text, Qt::ElideRight, room),
                              fits ? control.mnemonic : std::nullopt));
  const QString hidden = fits ? QString() : text;
  button.setToolTip(AsToolTip(hidden));
  button.setAccessibleName(hidden);
  // Else a screen reader would be given the tool tip with its marks.
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

int FittingLetters(const Control& control) {
  QFont font = GivenFont(*control.button);
  const QString text = ToQString(control.text);
  const int smallest = static_cast<int>(font.pixelSize() * kSmallestLetters);
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

}  // namespace qt
