#pragma once

#include <QAbstractButton>

#include "backends/qt/pictures.h"

namespace qt {

/// A picture that can be pressed.
class PictureButton final : public QAbstractButton {
 public:
  PictureButton(QWidget* parent, Pictures& pictures, int picture);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  Pictures& m_pictures;
  const int m_picture;
};

}  // namespace qt
