#pragma once

#include <QDialog>

class QEventLoop;

namespace qt {

/// A window that is shown until it is over.
class Frame : public QDialog {
 public:
  explicit Frame(QWidget* parent);

  /// Shows the window and serves it until it is over. Does nothing if it is over already.
  void Run();
  void End();
  [[nodiscard]] bool IsOver() const { return m_isOver; }

  /// Is called by the close box and by Esc.
  void reject() final { OnCloseBox(); }

 protected:
  virtual void OnCloseBox() = 0;
  virtual void OnHelpKey() {}
  /// Is called by Enter if no button is the default one.
  virtual void OnEnterKey() {}

  void keyPressEvent(QKeyEvent* event) override;

 private:
  [[nodiscard]] bool HasDefaultButton() const;

  QEventLoop* m_loop = nullptr;  ///< While it runs.
  bool m_isOver = false;
};

}  // namespace qt
