#pragma once

#include <memory>
#include <vector>

#include "backends/qt/frame.h"
#include "backends/qt/message_dialog.h"

namespace qt {

/// The windows that are open: those that have the user to themselves, one above the other, and
/// beside them the boxes of worker threads, which can always be answered and stop none of the
/// others. Belongs to the user-interface thread.
class WindowStack {
 public:
  WindowStack() = default;
  WindowStack(const WindowStack&) = delete;
  WindowStack& operator=(const WindowStack&) = delete;

  /// What a new window is to stand above; null for none.
  [[nodiscard]] QWidget* GetTop() const { return m_modal.empty() ? nullptr : m_modal.back(); }

  /// Runs `frame` above all others until it is over.
  void RunModal(Frame& frame);

  /// Shows a box that stops nobody; the listener hears of the answer.
  void ShowBeside(std::unique_ptr<MessageDialog> box);

  /// Lets go of the boxes that were answered.
  void Tidy();

 private:
  /// A window that has the user to itself spares those that stand above it.
  void PutBoxesAbove(QWidget* window);

  std::vector<Frame*> m_modal;
  std::vector<std::unique_ptr<MessageDialog>> m_boxes;
};

}  // namespace qt
