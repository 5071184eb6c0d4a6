#pragma once

#include <QDialog>

class QEventLoop;

namespace qt {

/// A window that is shown until it is over.
class Frame : public QDialog {
 public:
  explicit Frame(QWidget* parent);

  /// Shows the window and serves it until it is over; not at all where it is over already.
  void Run();
  void End();
  [[nodiscard]] bool IsOver() const { return m_isOver; }

  /// The close box and Esc.
  void reject() final { OnCloseBox(); }

 protected:
  virtual void OnCloseBox() = 0;
  virtual void OnHelpKey() {}
  /// Enter where no button is the default one.
  virtual void OnEnterKey() {}

  void keyPressEvent(QKeyEvent* event) override;

 private:
  [[nodiscard]] bool HasDefaultButton() const;

  QEventLoop* m_loop = nullptr;  ///< While it runs.
  bool m_isOver = false;
};

}  // namespace qt
