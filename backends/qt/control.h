#pragma once

#include <QAbstractButton>
#include <QLabel>
#include <QString>
#include <optional>
#include <string>

#include "backends/qt/qt_canvas.h"
#include "backends/qt/widgets.h"
#include "framework/item_list.h"
#include "resources/dialog_template.h"

namespace qt {

/// One control of a dialog. The widget is a child of the dialog's surface. Of the typed pointers,
/// the one that fits the widget is set.
struct Control {
  resources::ControlTemplate description;
  std::u16string text;  ///< As the page knows it; the widget may show it shortened or escaped.
  std::optional<framework::ItemList> items = std::nullopt;  ///< Of a combo box or a list box.
  QWidget* widget = nullptr;
  ComboBox* combo = nullptr;
  ListBox* list = nullptr;
  QAbstractButton* button = nullptr;
  QLabel* label = nullptr;
  QLabel* spoken =
      nullptr;  ///< Of a control without a visible label: a label that is only read out.
  int letters =
      0;  ///< Size of a button's or check box's letters, in pixels of the desktop; 0: as given.
  int room = 0;  ///< How wide a label may become for a longer text, in pixels of the desktop.
  std::optional<qsizetype> mnemonic = std::nullopt;  ///< Place in the text.
  int horizontalExtent = 0;
};

[[nodiscard]] bool IsPushButton(const Control& control);

[[nodiscard]] bool IsCheckBox(const Control& control);

/// Returns the size of letters in which the text of a push button or a check box fits: the given
/// size or a smaller one.
[[nodiscard]] int FittingLetters(const Control& control);

/// Shows the control's text in its widget. A label becomes as wide as it has room; a button uses
/// letters of its size.
void ShowText(Control& control);

/// Returns the text that the user reads in the control. Of a combo box this is the text of its
/// field.
[[nodiscard]] QString GetShownText(const Control& control);

/// Makes the widget of a control: a child of `surface`, at its place.
[[nodiscard]] Control MakeControl(const resources::ControlTemplate& description, QWidget& surface,
                                  Pictures& pictures);

}  // namespace qt
