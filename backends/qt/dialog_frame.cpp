#include "backends/qt/dialog_frame.h"

#include <QPushButton>
#include <QVBoxLayout>

#include "backends/qt/look.h"
#include "backends/qt/strings.h"

namespace qt {

DialogFrame::DialogFrame(const resources::DialogTemplate& dialog, platform::DialogHandler& handler,
                         UiThread& thread, Pictures& pictures, QWidget* parent)
    : Frame(parent), m_dialog(dialog, handler, thread, pictures, this) {
  setWindowTitle(AsWindowTitle(ToQString(dialog.caption)));
  setPalette(DialogPalette());
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins({});
  layout->setSizeConstraint(QLayout::SetFixedSize);
  layout->addWidget(&m_dialog.GetSurface());
  if (QPushButton* button = m_dialog.GetDefaultButton()) {
    button->setDefault(true);
  }
  QWidget* before = nullptr;
  for (QWidget* widget : m_dialog.GetTabChain()) {
    if (before == nullptr) {
      widget->setFocus();
    } else {
      setTabOrder(before, widget);
    }
    before = widget;
  }
  m_dialog.SetEndListener([this] { End(); });
}

}  // namespace qt
