#pragma once

#include <QComboBox>

namespace qt {

/// A drop-down list that the wheel turns only while it has the focus, so that scrolling past it
/// chooses nothing.
class ComboBox final : public QComboBox {
 public:
  explicit ComboBox(QWidget* parent);

 protected:
  void wheelEvent(QWheelEvent* event) override;
};

}  // namespace qt
