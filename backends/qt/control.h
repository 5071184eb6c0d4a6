#pragma once

#include <QAbstractButton>
#include <QLabel>
#include <QString>
#include <optional>
#include <string>

#include "backends/qt/combo_box.h"
#include "backends/qt/list_box.h"
#include "framework/item_list.h"
#include "resources/dialog_template.h"

namespace qt {

/// One control of a dialog. The widget is a child of the dialog's surface; of the typed pointers
/// the one that fits it is set.
struct Control {
  resources::ControlTemplate description;
  std::u16string text;  ///< As the page knows it; the widget may show it shortened or escaped.
  std::optional<framework::ItemList> items = std::nullopt;  ///< Of a combo box or a list box.
  QWidget* widget = nullptr;
  ComboBox* combo = nullptr;
  ListBox* list = nullptr;
  QAbstractButton* button = nullptr;
  QLabel* label = nullptr;
  QLabel* spoken = nullptr;  ///< Of a control without a label to see: one that is only read out.
  int letters =
      0;  ///< Size of a button's or check box's letters, in pixels of the desktop; 0: as given.
  int room = 0;  ///< How wide a label may become to show a longer text, in pixels of the desktop.
  std::optional<qsizetype> mnemonic = std::nullopt;  ///< Place in the text.
  int horizontalExtent = 0;
};

[[nodiscard]] bool IsPushButton(const Control& control);

[[nodiscard]] bool IsCheckBox(const Control& control);

/// The size of letters, the given one or a smaller one, in which the text of a push button or a
/// check box fits.
[[nodiscard]] int FittingLetters(const Control& control);

/// Has the widget show the control's text: a label as wide as it has room, a button in its letters.
void ShowText(Control& control);

/// What the user reads in the control: of a combo box what is chosen.
[[nodiscard]] QString GetShownText(const Control& control);

}  // namespace qt
