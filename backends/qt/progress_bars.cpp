#include "backends/qt/progress_bars.h"

#include <algorithm>

#include "backends/qt/scale.h"

namespace qt {

void ProgressBars::Create(int id, const platform::ProgressBar& bar, const QString& name,
                          QWidget& surface) {
  auto widget = std::make_unique<QProgressBar>(&surface);
  widget->setObjectName(QString::number(id));
  widget->setAccessibleName(name);
  widget->setTextVisible(false);
  // An empty range would show as a bar that runs to and fro.
  widget->setRange(bar.minimum, std::max(bar.maximum, bar.minimum + 1));
  widget->setValue(bar.minimum);
  widget->setGeometry(ToDesktop(bar.rect));
  widget->show();
  m_bars[id] = {std::move(widget), bar.step};
}

void ProgressBars::Step(int id) {
  const auto found = m_bars.find(id);
  if (found != m_bars.end()) {
    QProgressBar& widget = *found->second.widget;
    widget.setValue(std::min(widget.value() + found->second.step, widget.maximum()));
  }
}

}  // namespace qt
