#pragma once

#include <QListWidget>

namespace qt {

/// A list of lines of which at most one is selected. Once one is, it stays so until another is or
/// the list changes: a click beside the lines takes nothing back.
class ListBox final : public QListWidget {
 public:
  explicit ListBox(QWidget* parent);

  /// How far to the right one can scroll at least, in pixels of the desktop.
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

}  // namespace qt
