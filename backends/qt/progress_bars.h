#pragma once

#include <QProgressBar>
#include <map>
#include <memory>

#include "platform/dialog.h"

namespace qt {

/// The progress bars of one dialog, made at run time.
class ProgressBars {
 public:
  void Create(int id, const platform::ProgressBar& bar, const QString& name, QWidget& surface);
  void Step(int id);
  void Destroy(int id) { m_bars.erase(id); }

 private:
  struct Bar {
    std::unique_ptr<QProgressBar> widget;
    int step = 0;
  };
  std::map<int, Bar> m_bars;
};

}  // namespace qt
