#pragma once

#include <QAbstractButton>
#include <QComboBox>
#include <QElapsedTimer>
#include <QListWidget>
#include <QStyledItemDelegate>

#include "backends/qt/qt_canvas.h"

// Widgets that differ from those of the library in a few habits.

namespace qt {

/// Draws the lines of a list. Numbers read from left to right next to names of any script. The tool
/// tip of a line that is wider than the list is its whole text. Other lines have their own, if
/// any.
class LineDelegate final : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                 const QModelIndex& index) override;

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
};

/// A drop-down list. The wheel turns it only while it has the focus, so scrolling past it chooses
/// nothing. What is typed chooses the item that begins with it; a blank is a part of that, and
/// opens the list only if nothing was typed before. A choice that is too long for the field is
/// elided, and its tool tip is the whole text.
class ComboBox final : public QComboBox {
 public:
  explicit ComboBox(QWidget* parent);

 protected:
  bool event(QEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void initStyleOption(QStyleOptionComboBox* option) const override;

 private:
  /// Runs since the latest letter that was typed to find an item.
  QElapsedTimer m_sinceLetter;
};

/// A list of lines, of which at most one is selected. The user can select another line but cannot
/// take the selection back: a click next to the lines changes nothing. Left and Right scroll to the
/// ends of long lines.
class ListBox final : public QListWidget {
 public:
  explicit ListBox(QWidget* parent);

  /// Sets how far to the right the user can scroll at least, in pixels of the desktop.
  void SetExtent(int extent);

 protected:
  QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                       const QEvent* event) const override;
  void keyPressEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void updateGeometries() override;

 private:
  int m_extent = 0;
};

/// A picture that the user can press.
class PictureButton final : public QAbstractButton {
 public:
  PictureButton(QWidget* parent, Pictures& pictures, int picture);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  Pictures& m_pictures;
  const int m_picture;
};

/// Lies over a link that a dialog paints, for the keyboard and for screen readers. It shows nothing
/// but the focus and lets the mouse through to the dialog. Space and Enter click it.
class LinkArea final : public QAbstractButton {
 public:
  /// `link` is in pixels of the desktop.
  LinkArea(QWidget* parent, const QRect& link);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
};

}  // namespace qt
