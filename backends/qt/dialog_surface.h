#pragma once

#include <QWidget>
#include <functional>

#include "backends/qt/qt_canvas.h"
#include "platform/dialog.h"
#include "resources/dialog_template.h"

namespace qt {

/// The area on which a dialog's controls stand and its handler paints. Its size does not change.
class DialogSurface final : public QWidget {
 public:
  using PressKey = std::function<bool(int control, resources::Key key)>;

  DialogSurface(const resources::DialogTemplate& dialog, platform::DialogHandler& handler,
                Pictures& pictures, QWidget* parent);

  /// Makes `press` be called when a key goes down in the control. If it returns true, the control
  /// never gets that key.
  void WatchKeys(QWidget& control, int id, const PressKey& press);

  /// Is called with the place of a press of the main mouse button outside all controls.
  std::function<void(platform::Point)> onPress;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;

 private:
  const platform::Rect m_client;
  platform::DialogHandler& m_handler;
  Pictures& m_pictures;
};

}  // namespace qt
