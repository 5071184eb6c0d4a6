#pragma once

#include <QAction>
#include <QMenu>
#include <QPushButton>
#include <QToolButton>

#include "host/home/sizes.h"

namespace home {

/// Gives the button a menu, which opens at once. The button has no arrow for it, which would be
/// drawn over its symbol. If a key opens the menu, its first item is the current one: screen
/// readers would say nothing otherwise. To be called before the button gets its accessible name:
/// what screen readers know of it is made then.
void GiveMenu(QToolButton& button, QMenu& menu);

/// Gives the items of a menu the height that a finger hits, if the window is that of a phone. Call
/// it before the menu is shown.
void SuitFingers(QMenu& menu, const QWidget& window);

/// A button that is large enough for a finger, with some room around its text, which may have
/// several lines. Its symbol is as high as a letter, and symbol and text stand together in the
/// middle. The styles of the library tear them apart if the window is read from right to left.
class Button : public QPushButton {
 public:
  explicit Button(QWidget* parent);

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent* event) override;
};

/// A button for an action: it has its text, its symbol and its state, and triggers it.
class ActionButton : public Button {
 public:
  /// `action` outlives this.
  ActionButton(QAction& action, QWidget* parent);

  /// Without its text a button is narrower. The text is then its tool tip. Screen readers know it
  /// in any case.
  void ShowText(bool isShown);

 private:
  void Update();

  QAction& m_action;
  bool m_isTextShown = true;
};

}  // namespace home
