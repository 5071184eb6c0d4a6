#pragma once

#include <QWidget>
#include <functional>

#include "backends/qt/pictures.h"
#include "platform/dialog.h"
#include "resources/dialog_template.h"

namespace qt {

/// What a dialog's controls stand on and its handler paints on. It has a size that does not change.
class DialogSurface final : public QWidget {
 public:
  using PressKey = std::function<bool(int control, resources::Key key)>;

  DialogSurface(const resources::DialogTemplate& dialog, platform::DialogHandler& handler,
                Pictures& pictures, QWidget* parent);

  /// Called where a key goes down in a control, which then never hears of it if that returns true.
  void WatchKeys(QWidget& control, int id, const PressKey& press);

  /// Called with the place of a press of the main button beside all controls.
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
