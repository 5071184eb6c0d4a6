#pragma once

#include <QAbstractButton>

namespace qt {

/// Lies over a link that a dialog paints, for the keyboard and for screen readers: shows nothing
/// but where the focus is, and lets the mouse through to the dialog. Clicked by Space and by Enter.
class LinkArea final : public QAbstractButton {
 public:
  /// `link` in pixels of the desktop.
  LinkArea(QWidget* parent, const QRect& link);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
};

}  // namespace qt
