#include "backends/qt/dialog_surface.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <optional>

#include "backends/qt/look.h"
#include "backends/qt/qt_canvas.h"
#include "platform/dialog.h"

namespace qt {
namespace {

[[nodiscard]] std::optional<resources::Key> ToKey(const QKeyEvent& event) {
  // A key with Ctrl or Alt means something else, and the same key of the number block means the
  // same.
  if ((event.modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier) {
    return std::nullopt;
  }
  switch (event.key()) {
    case Qt::Key_Delete:
      return resources::Key::kDelete;
    case Qt::Key_Space:
      return resources::Key::kSpace;
    default:
      return std::nullopt;
  }
}

/// Watches the keys of one control, before the control itself gets them.
class KeyWatcher final : public QObject {
 public:
  KeyWatcher(QWidget& control, int id, DialogSurface::PressKey press)
      : QObject(&control), m_id(id), m_press(std::move(press)) {}

  bool eventFilter(QObject* /*watched*/, QEvent* event) override {
    if (event->type() != QEvent::KeyPress) {
      return false;
    }
    const auto& pressed = *static_cast<const QKeyEvent*>(event);
    const auto key = ToKey(pressed);
    // A key that is held down is one press.
    return key && (pressed.isAutoRepeat() || m_press(m_id, *key));
  }

 private:
  const int m_id;
  const DialogSurface::PressKey m_press;
};

}  // namespace

DialogSurface::DialogSurface(const resources::DialogTemplate& dialog,
                             platform::DialogHandler& handler, Pictures& pictures, QWidget* parent)
    : QWidget(parent),
      m_client(platform::ToPixels({0, 0, dialog.width, dialog.height})),
      m_handler(handler),
      m_pictures(pictures) {
  setObjectName(QStringLiteral("dialog_%1").arg(dialog.id));
  // A dialog has the size of its template, scaled. The pages know nothing of a window that grows.
  setFixedSize(ToDesktop(m_client).size());
  setFont(DialogFont());
  setPalette(DialogPalette());
  setAutoFillBackground(true);
}

void DialogSurface::WatchKeys(QWidget& control, int id, const PressKey& press) {
  control.installEventFilter(new KeyWatcher(control, id, press));
}

// The painter works in desktop pixels and the canvas in pixels of the device. The canvas converts.
void DialogSurface::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  QtCanvas canvas(painter, m_client, m_pictures);
  m_handler.OnPaint(canvas);
  // A screen reader finds here the painted texts, which are no texts of a control.
  if (const QString told = canvas.GetTexts().join(u'\n'); told != accessibleDescription()) {
    setAccessibleDescription(told);
  }
}

void DialogSurface::mousePressEvent(QMouseEvent* event) {
  // A disabled control lets a press through to the surface under it.
  const bool isBeside = childAt(event->position().toPoint()) == nullptr;
  if (event->button() == Qt::LeftButton && isBeside && onPress) {
    onPress(ToDevice(event->position()));
  }
}

}  // namespace qt
