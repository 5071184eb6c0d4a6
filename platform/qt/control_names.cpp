#include "platform/qt/control_names.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include "platform/qt/mnemonics.h"
#include "platform/qt/strings.h"

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

}  // namespace

void TieLabels(std::list<Control>& controls) {
  for (auto control = controls.begin(); control != controls.end(); ++control) {
    if (control == controls.begin() || !NeedsName(*control)) {
      continue;
    }
    const Control& before = *std::prev(control);
    if (before.label != nullptr && before.description.isVisible &&
        control->description.namedBy == resources::kNoControlId) {
      before.label->setBuddy(control->widget);
    }
  }
}

void NameControls(std::list<Control>& controls, const QString& caption) {
  const Control* before = nullptr;
  for (Control& control : controls) {
    if (NeedsName(control)) {
      QString name = ToQString(control.description.kind == ControlKind::kPicture
                                   ? std::u16string_view(control.text)
                                   : std::u16string_view());
      if (const Control* namer = FindById(controls, control.description.namedBy)) {
        name = GetShownText(*namer);
      } else if (name.isEmpty() && before != nullptr) {
        const bool names =
            before->label != nullptr || before->description.kind == ControlKind::kGroupBox;
        name = names ? GetShownText(*before) : QString();
      }
      control.widget->setAccessibleName(name.isEmpty() ? caption : name);
    }
    before = &control;
  }
}

void ShowButtons(std::list<Control>& controls) {
  std::vector<Control*> buttons;
  std::vector<QString> texts;
  int letters = 0;
  for (Control& control : controls) {
    if (IsPushButton(control) && control.description.isVisible) {
      const int fitting = FittingLetters(control);
      letters = buttons.empty() ? fitting : std::min(letters, fitting);
      buttons.push_back(&control);
      texts.push_back(ToQString(control.text));
    }
  }
  const auto places = ChooseMnemonics(texts);
  for (std::size_t i = 0; i < buttons.size(); ++i) {
    buttons[i]->mnemonic = places[i];
    buttons[i]->letters = letters;
    ShowText(*buttons[i]);
  }
}

}  // namespace qt
