#include "backends/qt/control_names.h"

#include <QLineEdit>
#include <algorithm>
#include <vector>

#include "backends/qt/strings.h"

// What a screen reader calls each control, and which letter of a button is underlined. Little of it
// is in the templates, which are older than both.
namespace qt {
namespace {

using resources::ControlKind;

[[nodiscard]] bool NeedsName(const Control& control) {
  return control.combo != nullptr || control.list != nullptr ||
         control.description.kind == ControlKind::kPicture;
}

[[nodiscard]] const Control* FindById(const std::list<Control>& controls, int id) {
  const auto found = std::ranges::find_if(
      controls, [id](const Control& control) { return control.description.id == id; });
  return id == resources::kNoControlId || found == controls.end() ? nullptr : &*found;
}

/// Some desktops call a combo box by the item that is chosen in it. Only a label tied to it says
/// what the box is for.
void MakeSpokenLabel(Control& control) {
  control.spoken = new QLabel(control.widget->parentWidget());
  control.spoken->setTextFormat(Qt::PlainText);
  // Of no size, so it is there for screen readers and for nobody's eyes.
  control.spoken->setGeometry(QRect(control.widget->pos(), QSize(0, 0)));
  control.spoken->setBuddy(control.widget);
}

/// Gives the visible ones letters of one size, in which all their texts fit, and returns them.
[[nodiscard]] std::vector<Control*> GiveOneSize(std::list<Control>& controls,
                                                bool (*isOne)(const Control&)) {
  std::vector<Control*> alike;
  int letters = 0;
  for (Control& control : controls) {
    if (isOne(control) && control.description.isVisible) {
      const int fitting = FittingLetters(control);
      letters = alike.empty() ? fitting : std::min(letters, fitting);
      alike.push_back(&control);
    }
  }
  for (Control* control : alike) {
    control->letters = letters;
  }
  return alike;
}

}  // namespace

// A template lists the controls in their order on the dialog, so a label stands right before the
// control that it names. The functions below go through the controls once and remember the one
// before.

void TieLabels(std::list<Control>& controls) {
  const Control* before = nullptr;
  for (Control& control : controls) {
    if (NeedsName(control)) {
      const bool isLabelled = before != nullptr && before->label != nullptr &&
                              before->description.isVisible &&
                              control.description.namedBy == resources::kNoControlId;
      if (isLabelled) {
        before->label->setBuddy(control.widget);
      } else if (control.combo != nullptr) {
        MakeSpokenLabel(control);
      }
    }
    before = &control;
  }
}

void NameControls(std::list<Control>& controls, const QString& caption) {
  const Control* before = nullptr;
  for (Control& control : controls) {
    if (NeedsName(control)) {
      QString name = ToQString(control.description.kind == ControlKind::kPicture
                                   ? std::u16string_view(control.text)
                                   : std::u16string_view());
      // The template's word comes first, then the label or the frame before it, then the dialog.
      if (const Control* namer = FindById(controls, control.description.namedBy)) {
        name = GetShownText(*namer);
      } else if (name.isEmpty() && before != nullptr) {
        const bool names =
            before->label != nullptr || before->description.kind == ControlKind::kGroupBox;
        name = names ? GetShownText(*before) : QString();
      }
      name = name.isEmpty() ? caption : name;
      control.widget->setAccessibleName(name);
      // The field of an editable box takes the focus, so it is what a screen reader reads.
      if (control.combo != nullptr && control.combo->isEditable()) {
        control.combo->lineEdit()->setAccessibleName(name);
      }
      if (control.spoken != nullptr) {
        control.spoken->setText(WithoutMnemonic(name));
      }
    }
    before = &control;
  }
}

// The size of the letters comes first: a mnemonic is shown only in a text that fits.
void ShowButtons(std::list<Control>& controls) {
  const std::vector<Control*> buttons = GiveOneSize(controls, IsPushButton);
  std::vector<QString> texts;
  texts.reserve(buttons.size());
  for (const Control* button : buttons) {
    texts.push_back(ToQString(button->text));
  }
  const auto places = ChooseMnemonics(texts);
  for (std::size_t i = 0; i < buttons.size(); ++i) {
    buttons[i]->mnemonic = places[i];
    ShowText(*buttons[i]);
  }
  for (Control* box : GiveOneSize(controls, IsCheckBox)) {
    ShowText(*box);
  }
}

}  // namespace qt
