#pragma once

#include <QComboBox>
#include <QWidget>
#include <functional>
#include <initializer_list>
#include <string_view>
#include <utility>
#include <vector>

#include "host/home/access.h"

class QLabel;
class QPushButton;
class QVBoxLayout;

namespace home {

class ButtonRow;

/// A list to choose from that may be narrower than its texts. What is cut ends with an ellipsis.
class ChoiceBox final : public QComboBox {
 public:
  using QComboBox::QComboBox;

 protected:
  void paintEvent(QPaintEvent* event) override;
};

/// One part of the set-up page: a heading, and below it texts, controls and buttons in the order in
/// which they are added.
class SetupSection : public QWidget {
 public:
  SetupSection(std::u16string_view heading, QWidget* parent);

  /// The page is about to be shown.
  virtual void OnShown() {}
  /// The page is hidden. Ends what goes on only for its eyes.
  virtual void OnLeft() {}

  /// Breaks the texts of the buttons into lines if they are wider than that.
  void FitButtons(int width);

 protected:
  /// Adds a text that can be selected with the mouse. An empty one takes no room.
  QLabel* AddText(const QString& text);
  /// Adds a text that screen readers say when it changes.
  LiveLabel* AddNews();
  /// Adds a control as wide as the section. A wheel over it scrolls the page: a list that took it
  /// would choose something while the user only scrolls. For the same reason a key opens a closed
  /// list, and only Enter or a click chooses.
  void AddControl(QWidget* control);
  /// Makes a button of the row of buttons, which is where the first one was made. ShowButtons shows
  /// it.
  QPushButton* AddButton(std::u16string_view text, const char* name, std::function<void()> act);

  /// Gives a button of the row another text.
  void ChangeText(QPushButton& button, const QString& text);

  void ShowButtons(std::initializer_list<QPushButton*> buttons);

  /// Disables these controls while an errand is done for the section. The focus comes back to the
  /// one that had it.
  void SetBusy(std::initializer_list<QWidget*> controls, bool isBusy);

  /// Shows the text, or gives its room away if it is empty.
  static void ShowText(QLabel& label, const QString& text);
  static void ShowNews(LiveLabel& label, const QString& text);

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QVBoxLayout* m_body;
  ButtonRow* m_buttons = nullptr;  ///< Null until there is a button.
  /// The buttons with their whole texts.
  std::vector<std::pair<QPushButton*, QString>> m_texts;
  QWidget* m_focused = nullptr;  ///< Had the focus when its errand began. Null if none had.
};

}  // namespace home
