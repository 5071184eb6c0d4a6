#pragma once

#include <QObject>

namespace qt {

/// While it is closed, nothing that the user does reaches a window other than a message box: what
/// is typed or clicked in the meantime is lost, rather than done all at once afterwards. Windows
/// go on painting, moving and resizing.
///
/// Belongs to the user-interface thread.
class InputGate final : public QObject {
 public:
  void Close();
  void Open();
  [[nodiscard]] bool IsClosed() const { return m_depth > 0; }

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  int m_depth = 0;
};

}  // namespace qt
